// The encoder of QR codes, once its script has come.
import type {Squares} from '../model/joinCode';

type Encode = (text: string) => Squares;

let encode: Encode | null = null;

export const giveEncoder = (encoder: Encode) => { encode = encoder; };
export const encoder = () => encode;
