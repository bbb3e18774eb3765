// The encoder of QR codes, once its script has come.
import type {Squares} from '../model/joinCode';

type Encode = (text: string) => Squares;

let encode: Encode | null = null;

export const giveEncoder = (encoder: Encode) => { encode = encoder; };

// Null for what is too long for a code: a recorder may export any text.
export function squaresOf(text: string): Squares | null {
  try {
    return encode && encode(text);
  } catch {
    return null;
  }
}
