// Fuzzes a core for ./kex fuzz:
//
//     main.ts viewer_CORE SECONDS SEED FINDING   runs inputs; one that fails is written to the file FINDING
//     main.ts viewer_CORE FILE                   runs one input
//
// The exit status is 0, or 1 if something is wrong.
import { readFileSync, writeFileSync } from 'node:fs';
import { Script } from 'node:vm';
import fc from 'fast-check';
import { cores, keptInputs, type CoreName } from './cores';

const [core = '', secondsOrFile = '', seed = '', finding = ''] = process.argv.slice(2);
const name = core.replace('viewer_', '') as CoreName;
const { inputs, check } = cores[name];

// Node interrupts what a script calls, and nothing else.
const longest = 10_000;
const call = new Script('runCheck()');
function checkInTime(input: Uint8Array): void {
  Object.assign(globalThis, { runCheck: () => check(input) });
  call.runInThisContext({ timeout: longest });
}

function takesTooLong(error: unknown): boolean {
  return (error as NodeJS.ErrnoException).code === 'ERR_SCRIPT_EXECUTION_TIMEOUT';
}

function failure(input: Uint8Array): string | undefined {
  try {
    checkInTime(input);
    return undefined;
  } catch (error) {
    return takesTooLong(error) ? `it does not end in ${longest / 1000} s` : (error as Error).stack;
  }
}

function report(input: Uint8Array, what: string | undefined): void {
  if (what === undefined) return;
  console.error(`difference: ${what}`);
  if (finding) writeFileSync(finding, input);
  process.exit(1);
}

if (!seed) report(readFileSync(secondsOrFile), failure(readFileSync(secondsOrFile)));
else {
  const kept = keptInputs(name).map(({ input }) => input);
  for (const input of kept) report(input, failure(input));
  let runs = kept.length;
  const property = fc.property(inputs(kept), (input) => {
    ++runs;
    try {
      checkInTime(input);
    } catch (error) {
      if (takesTooLong(error)) report(input, failure(input)); // a smaller one would take as long to find
      throw error;
    }
  });
  const { failed, counterexample } = fc.check(property, {
    seed: Number(seed),
    numRuns: Infinity,
    interruptAfterTimeLimit: Number(secondsOrFile) * 1000,
  });
  if (failed && counterexample) report(counterexample[0], failure(counterexample[0]) ?? 'not again');
  console.log(`${runs} inputs of seed ${seed}`);
}
