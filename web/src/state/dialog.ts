// A question that must be answered before something happens. One at a time.
import {get, set, type Dialog} from './store';

let settle: (yes: boolean) => void = () => {};

export function askUser(dialog: Dialog): Promise<boolean> {
  if (get().dialog) return Promise.resolve(false);
  set({dialog});
  return new Promise((resolve) => { settle = resolve; });
}

export function answerDialog(yes: boolean) {
  set({dialog: null});
  settle(yes);
}
