// Why a request failed. 'deviceSilent': the service got no answer from the recorder;
// 'serviceSilent': the service did not answer in time; 'lost': no connection; 'unreadable': not an
// answer of the service; 'refused': no valid session; 'dropped': nobody is waiting for it any more.
export type FaultKind =
    'deviceSilent' | 'serviceSilent' | 'lost' | 'unreadable' | 'refused' | 'dropped';

export class Fault extends Error {
  constructor(readonly kind: FaultKind) {
    super(kind);
    // A class below Error loses its own type where the target has no classes of its own.
    Object.setPrototypeOf(this, Fault.prototype);
  }
}

// The kind of a caught exception; anything but a Fault is our own mistake and is rethrown.
export function kindOf(caught: unknown): FaultKind {
  if (caught instanceof Fault) return caught.kind;
  throw caught;
}
