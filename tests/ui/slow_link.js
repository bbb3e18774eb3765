// A mobile link between browser and daemon: a relay that delays every byte by half the round trip
// and limits the rate, separately for each direction. A connection costs one round trip before its
// first byte, as the handshake would. It counts the traffic.
//
// The kernel's own emulation (netem) is missing on some machines, and the browser's delays requests
// but not connections. With this one the link is the same for every browser, and what the browser
// takes from its cache is not counted.
import {once} from 'node:events';
import {createServer, connect} from 'node:net';

const kRoundTripMs = 400;
const kBytesPerMs = 400000 / 8 / 1000;

// One direction, shared by all connections.
class Lane {
  constructor(link) {
    this.link = link;
    this.free = 0;
    this.bytes = 0;
  }

  // How long a piece of this size takes from now until it has passed.
  take(size, opened) {
    const now = Date.now();
    this.bytes += size;
    this.free = Math.max(this.free, now) + size / kBytesPerMs;
    return this.link.slow ? Math.max(this.free, opened) + kRoundTripMs / 2 - now : 0;
  }
}

// One direction of one connection. What was sent first arrives first, whichever timer fires.
class Pipe {
  constructor(lane, from, to, opened) {
    this.waiting = [];
    from.on('data', (piece) => this.later(lane.take(piece.length, opened), () => to.write(piece)));
    from.on('end', () => this.later(lane.take(0, opened), () => to.end()));
    from.on('close', () => this.later(lane.take(0, opened), () => to.destroy()));
    from.on('error', () => to.destroy());
  }

  later(wait, act) {
    this.waiting.push(act);
    setTimeout(() => this.waiting.shift()(), wait);
  }
}

export class SlowLink {
  constructor(target) {
    this.target = target;
    this.slow = true;
    this.sockets = new Set();
    this.up = new Lane(this);
    this.down = new Lane(this);
    this.connections = 0;
    this.asked = [];
  }

  static async to(target) {
    const link = new SlowLink(target);
    link.server = createServer((near) => link.join(near)).listen(0, target);
    await once(link.server, 'listening');
    link.url = `http://${target}:${link.server.address().port}`;
    return link;
  }

  join(near) {
    this.connections++;
    const opened = Date.now() + (this.slow ? kRoundTripMs : 0);
    const far = connect(80, this.target);
    for (const [from, to, lane] of [[near, far, this.up], [far, near, this.down]]) {
      from.setNoDelay(true);
      this.sockets.add(from);
      from.on('close', () => this.sockets.delete(from));
      new Pipe(lane, from, to, opened);
    }
    // A browser sends one request at a time on a connection, each in one piece.
    near.on('data', (piece) => {
      const head = /^[A-Z]+ (\/[^ ?]*)\S* HTTP\/1\.1\r\n/.exec(piece.toString('latin1'));
      if (head) this.asked.push(head[1]);
    });
  }

  // The traffic since the last call: the paths of requests, and the bytes in both directions.
  passed() {
    const bytes = this.up.bytes + this.down.bytes;
    this.up.bytes = this.down.bytes = 0;
    return {requests: this.asked.splice(0), bytes};
  }

  stop() {
    this.server.close();
    for (const socket of this.sockets) socket.destroy();
  }
}
