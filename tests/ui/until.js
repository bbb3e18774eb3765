// Waits for a condition, never for a fixed time.
const kPatienceMs = 30000;
const kStepMs = 20;

// Returns the probe's result as soon as it is true; throws an error that names what never came.
export async function until(probe, what, patience = kPatienceMs) {
  const end = Date.now() + patience;
  for (;;) {
    const found = await probe();
    if (found) return found;
    if (Date.now() > end) throw new Error(`waited ${patience / 1000} s in vain: ${what}`);
    await new Promise((resume) => { setTimeout(resume, kStepMs); });
  }
}
