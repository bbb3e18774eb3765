// One request at a time: the recorder serves no more. Work waits in order, saves before reads.
import {Fault} from './fault';

interface Job { work: () => Promise<void>; drop: () => void; group: string; urgent: boolean }

export class Queue {
  private waiting: Job[] = [];
  private running = false;

  get busy() { return this.running; }

  // Runs work when its turn comes. `group` names what may be dropped together.
  add<T>(work: () => Promise<T>, group = '', urgent = false): Promise<T> {
    return new Promise<T>((resolve, reject) => {
      const job: Job = {
        work: () => work().then(resolve, reject),
        drop: () => reject(new Fault('dropped')),
        group, urgent,
      };
      const place = urgent ? this.waiting.findIndex((other) => !other.urgent) : -1;
      if (place < 0) this.waiting.push(job);
      else this.waiting.splice(place, 0, job);
      void this.run();
    });
  }

  // Drops what is waiting for a group; work in progress continues.
  drop(group: string) {
    const dropped = this.waiting.filter((job) => job.group === group);
    this.waiting = this.waiting.filter((job) => job.group !== group);
    for (const job of dropped) job.drop();
  }

  private async run() {
    if (this.running) return;
    this.running = true;
    for (let job = this.waiting.shift(); job; job = this.waiting.shift()) await job.work();
    this.running = false;
  }
}
