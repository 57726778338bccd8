import { core as json } from './json_fuzz';
import { core as received } from './received_fuzz';
import { core as record } from './record_fuzz';
import { core as script } from './script_fuzz';
import { core as text } from './text_fuzz';
import { readdirSync, readFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';

export const cores = { json, received, record, script, text } as const;
export type CoreName = keyof typeof cores;

/** Kept inputs are beside those of the library. */
export function keptInputs(name: CoreName): { file: string; input: Uint8Array }[] {
  const folder = fileURLToPath(new URL(`../../../tests/fuzz/corpus/viewer_${name}`, import.meta.url));
  return readdirSync(folder)
    .sort()
    .map((file) => ({ file, input: readFileSync(`${folder}/${file}`) }));
}
