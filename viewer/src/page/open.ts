// The ways in: a file that is chosen or dropped is read as text; a record beside the page comes as a script.
import { batch } from '@preact/signals';
import { NoRecord, type RawRecord } from '../record/record';
import { readScript } from '../record/script_reader';
import { TextReader } from '../record/text_reader';
import { reading, refusal, show, showSecond } from './state';

const partSize = 4 << 20;
let newest = 0;

/** Reads a file, part by part, so that the page stays alive; a file opened later takes over. */
export async function openFile(file: File, as: 'first' | 'second' = 'first'): Promise<void> {
  const mine = ++newest;
  await reporting(file.name, mine, async () => {
    const reader = new TextReader();
    for (let at = 0; at < file.size; at += partSize) {
      const part = await file.slice(at, at + partSize).arrayBuffer();
      if (mine !== newest) return;
      reader.push(new Uint8Array(part));
      reading.value = { title: file.name, part: at / file.size };
    }
    await painted();
    if (mine !== newest) return;
    place(reader.finish(), file.name, as);
  });
}

function place(raw: RawRecord, title: string, as: 'first' | 'second'): void {
  if (as === 'first') show(raw, title, false);
  else showSecond(raw, title);
}

/** Sentences for what can go wrong on the way. */
async function reporting(title: string, mine: number, work: () => Promise<void>): Promise<void> {
  reading.value = { title, part: 0 };
  try {
    await work();
  } catch (error) {
    if (mine === newest) refusal.value = `${title} cannot be shown. ${sentence(error)}`;
  } finally {
    if (mine === newest) reading.value = undefined;
  }
}

function sentence(error: unknown): string {
  if (error instanceof NoRecord) return error.message;
  if (error instanceof RangeError) return 'It needs more memory than the browser gives to a page.';
  if (error instanceof DOMException)
    return 'The browser could not read the file: is it a folder, or was it moved?';
  return `The page failed on it: ${String(error)}`;
}

/** After the next picture, or soon where the page is not seen. */
function painted(): Promise<void> {
  return new Promise((resolve) => {
    setTimeout(resolve, 100);
    requestAnimationFrame(() => setTimeout(resolve));
  });
}

/** The record that a page beside it shows without being asked; `?record=NAME.js` names another one in its folder. */
export function recordBeside(): { name: string; wanted: boolean } {
  const wanted = new URLSearchParams(location.search).get('record');
  if (wanted && /^[^/\\:?#]+\.js$/i.test(wanted) && !wanted.startsWith('.'))
    return { name: wanted, wanted: true };
  return { name: 'profiler.js', wanted: false };
}

/** Loads a record beside the page as a script, since browsers do not let a page read its neighbours as text. */
export async function openScript(name: string, wanted: boolean): Promise<void> {
  const mine = ++newest;
  const globals = globalThis as { threads?: unknown };
  let error: string | undefined;
  const onError = (event: ErrorEvent) => (error = event.message);
  window.addEventListener('error', onError);
  const found = await new Promise<boolean>((resolve) => {
    const script = document.createElement('script');
    // Each byte of a name as a character of its own, whatever its code page.
    script.setAttribute('charset', 'x-user-defined');
    script.src = encodeURIComponent(name);
    script.onload = () => resolve(true);
    script.onerror = () => resolve(false);
    reading.value = { title: name, part: 0 };
    document.head.append(script);
    script.remove();
  });
  window.removeEventListener('error', onError);
  const { threads } = globals;
  globals.threads = undefined;
  if (mine !== newest) return;
  batch(() => {
    reading.value = undefined;
    if (!found && wanted)
      refusal.value = `There is no record ${name} beside this page, or it is too large for a script: drop the file here.`;
    else if (found && threads === undefined)
      refusal.value =
        `${name} is no valid script${error ? '' : ' that declares "threads"'}: a quote, a backslash or a line break in a ` +
        'name makes it so. Drop the file here or open it: then it is read as text.';
  });
  if (threads !== undefined)
    await reporting(name, mine, async () => {
      await painted();
      show(readScript(threads), name, true);
    });
}
