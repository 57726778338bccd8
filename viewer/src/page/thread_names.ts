// The names that the user gave to threads are kept in the browser, for the next time that this record is opened, or
// another one of the same program. Nothing else is stored.
import { effect } from '@preact/signals';
import * as state from './state';

const prefix = 'kexlib profile threads: ';

/** A record is known by its title and its threads. */
function keyOfRecord(): string | undefined {
  const record = state.opened.value;
  return record && prefix + JSON.stringify([record.title, record.profile.threads.map(({ name }) => name)]);
}

let recalled: string | undefined;

export function recallThreadNames(): void {
  const key = keyOfRecord();
  recalled = key;
  if (!key) return;
  const stored = readStored(key);
  if (stored.length > 0) state.renamed.value = new Map(stored);
}

function readStored(key: string): [number, string][] {
  try {
    const stored: unknown = JSON.parse(localStorage.getItem(key) ?? '[]');
    return (Array.isArray(stored) ? stored : []).filter(
      (entry): entry is [number, string] =>
        Array.isArray(entry) && Number.isInteger(entry[0]) && typeof entry[1] === 'string',
    );
  } catch {
    return []; // the browser stores nothing for this page
  }
}

effect(() => {
  const names = [...state.renamed.value];
  const key = keyOfRecord();
  if (!key || key !== recalled) return;
  try {
    if (names.length > 0) localStorage.setItem(key, JSON.stringify(names));
    else localStorage.removeItem(key);
  } catch {
    // The names go with the page.
  }
});
