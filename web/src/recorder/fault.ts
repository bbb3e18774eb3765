// Why a request brought nothing. 'deviceSilent': the service got no answer of the recorder;
// 'serviceSilent': the service did not answer in time; 'lost': no connection; 'unreadable': no
// answer of the service's; 'refused': no valid session; 'dropped': nobody waits for it any more.
export type FaultKind =
    'deviceSilent' | 'serviceSilent' | 'lost' | 'unreadable' | 'refused' | 'dropped';

export class Fault extends Error {
  constructor(readonly kind: FaultKind) {
    super(kind);
    // A class below Error loses its own type where the target has no classes of its own.
    Object.setPrototypeOf(this, Fault.prototype);
  }
}

// The kind of something caught; what is no Fault is our own mistake and goes on.
export function kindOf(caught: unknown): FaultKind {
  if (caught instanceof Fault) return caught.kind;
  throw caught;
}
