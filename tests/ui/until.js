// Waiting for a sign, never for a time.
const kPatienceMs = 30000;
const kStepMs = 20;

// What the probe returns as soon as it is true; an error that names what never came.
export async function until(probe, what, patience = kPatienceMs) {
  const end = Date.now() + patience;
  for (;;) {
    const found = await probe();
    if (found) return found;
    if (Date.now() > end) throw new Error(`waited ${patience / 1000} s in vain: ${what}`);
    await new Promise((resume) => { setTimeout(resume, kStepMs); });
  }
}
