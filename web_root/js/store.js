// Memory of the browser: language, drafts, session. Without it only convenience is lost.

function attempt(work, otherwise) {
  try {
    return work();
  } catch {
    return otherwise;
  }
}

export const remember = (key, value) => attempt(() => localStorage.setItem(key, value));
export const recall = (key) => attempt(() => localStorage.getItem(key), null);

export const saveDraft = (key, draft) =>
  attempt(() => sessionStorage.setItem(`draft.${key}`, JSON.stringify(draft)));
export const loadDraft = (key) =>
  attempt(() => JSON.parse(sessionStorage.getItem(`draft.${key}`)), null);
export const dropDraft = (key) => attempt(() => sessionStorage.removeItem(`draft.${key}`));

// A cookie that ends with the browser and that its tabs share.
export function sessionId() {
  const match = /(?:^|;\s*)jsession=([0-9a-f]{32})(?:;|$)/.exec(document.cookie);
  return match ? match[1] : null;
}
export const startSession = (id) => {
  document.cookie = `jsession=${id}; path=/; SameSite=Strict`;
};
export const endSession = () => {
  document.cookie = 'jsession=; path=/; SameSite=Strict; max-age=0';
};
