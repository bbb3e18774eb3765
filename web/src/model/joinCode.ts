// What a phone's camera reads to join a network, and the squares of it as a drawing.
const quoted = (text: string) => text.replace(/[\\;,:"]/g, '\\$&');

// Without a password the network is open.
export function joinText(name: string, password: string): string {
  const secured = password ? `T:WPA;S:${quoted(name)};P:${quoted(password)};`
    : `T:nopass;S:${quoted(name)};`;
  return `WIFI:${secured};`;
}

export interface Squares { readonly size: number; get(x: number, y: number): boolean }

// One bar for neighbours in a row.
export function drawingOf(squares: Squares): string {
  let path = '';
  for (let y = 0; y < squares.size; y++) {
    for (let x = 0; x < squares.size; x++) {
      const from = x;
      while (squares.get(x, y)) x++;
      if (x > from) path += `M${from} ${y}h${x - from}v1h${from - x}z`;
    }
  }
  return path;
}
