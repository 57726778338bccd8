// Fuzzes a core for ./kex fuzz:
//
//     main.ts viewer_CORE SECONDS SEED FINDING   runs inputs; one that fails is written to the file FINDING
//     main.ts viewer_CORE FILE                   runs one input
//
// The exit status is 0, or 1 if something is wrong.
import { readFileSync, writeFileSync } from 'node:fs';
import fc from 'fast-check';
import { cores, keptInputs, type CoreName } from './cores';

const [core = '', secondsOrFile = '', seed = '', finding = ''] = process.argv.slice(2);
const name = core.replace('viewer_', '') as CoreName;
const { inputs, check } = cores[name];

function failure(input: Uint8Array): string | undefined {
  try {
    check(input);
    return undefined;
  } catch (error) {
    return (error as Error).stack;
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
    check(input);
  });
  const { failed, counterexample } = fc.check(property, {
    seed: Number(seed),
    numRuns: Infinity,
    interruptAfterTimeLimit: Number(secondsOrFile) * 1000,
  });
  if (failed && counterexample) report(counterexample[0], failure(counterexample[0]) ?? 'not again');
  console.log(`${runs} inputs of seed ${seed}`);
}
