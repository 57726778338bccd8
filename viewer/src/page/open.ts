// The ways in: a file that is chosen or dropped is read as text; a record beside the page comes as a script.
import { batch } from '@preact/signals';
import { NoRecord, type RawRecord } from '../record/record';
import { RecordReader } from '../record/reader';
import { startHistory } from './back_forward';
import { openId } from './ids';
import { applyView, takeView, viewOfLink } from './kept_view';
import { loadScript } from './record_frame';
import { notice, opened, reading, refusal, show, showSecond, type Source } from './state';
import { recallThreadNames } from './thread_names';
import { isViewText, NoView, readView } from './view_text';

const partSize = 4 << 20;
const partsAhead = 4;
/** Ends what is being opened: a file opened later takes over. */
let current = new AbortController();

interface OpenOptions {
  as?: 'first' | 'second';
  handle?: FileSystemFileHandle | undefined;
  /** Keeps the view, if the record before has the same title. */
  keepView?: boolean;
}

/** Reads a file, part by part, so that the page stays alive. */
export async function openFile(file: File, options: OpenOptions = {}): Promise<void> {
  const { as = 'first', handle } = options;
  await reporting(file.name, async (signal) => {
    if (file.size < largestView && isViewText(await file.slice(0, 100).text())) return openView(file);
    const reader = new RecordReader();
    let read = 0;
    for await (const part of partsOf(file)) {
      if (signal.aborted) return;
      reader.push(part);
      reading.value = { title: file.name, part: (read += part.length) / file.size };
    }
    const raw = reader.finish();
    if (as === 'second') showSecond(raw, file.name);
    else place(raw, file.name, { kind: 'file', handle }, options.keepView);
  });
}

/** The parts of a file. The next ones are on their way while one is worked on. */
async function* partsOf(file: File): AsyncGenerator<Uint8Array> {
  const coming: Promise<ArrayBuffer>[] = [];
  let asked = 0;
  do {
    for (; asked < file.size && coming.length < partsAhead; asked += partSize) {
      const part = file.slice(asked, asked + partSize).arrayBuffer();
      part.catch(() => {}); // told where it is waited for, if it is
      coming.push(part);
    }
    const part = await coming.shift();
    if (part) yield new Uint8Array(part);
  } while (coming.length > 0 || asked < file.size);
}

const largestView = 4 << 20;

/** Shows the record that is open as a file says. */
async function openView(file: File): Promise<void> {
  const kept = readView(await file.text());
  const record = opened.value;
  if (!record) throw new NoView(`It is the view of ${kept.record}: open that record first.`);
  applyView(kept);
  notice.value =
    record.title === kept.record
      ? undefined
      : `The view is one of ${kept.record}; what fits ${record.title} is shown.`;
}

/** Shows a record, with the names that its threads were given, and the view that was kept of it. */
function place(raw: RawRecord, title: string, source: Source, keepView = false): void {
  const kept = keepView && opened.value?.title === title ? takeView() : viewOfLink();
  batch(() => {
    show(raw, title, source);
    recallThreadNames();
    if (kept?.record === title) applyView(kept);
  });
  startHistory();
}

/** Opens what was dropped; where the browser gives a handle, the file can be read again later. */
export async function openDropped(data: DataTransfer, as: 'first' | 'second'): Promise<void> {
  const [item] = data.items;
  const [file] = data.files;
  const asHandle =
    item && 'getAsFileSystemHandle' in item ? (item.getAsFileSystemHandle as HandleGetter) : undefined;
  const handle = await asHandle?.call(item).catch(() => null);
  if (file)
    await openFile(file, {
      as,
      handle: handle?.kind === 'file' ? (handle as FileSystemFileHandle) : undefined,
    });
}

type HandleGetter = () => Promise<FileSystemHandle | null>;

/** Reads the record again and keeps the view: for people who run, look, change and run. */
export async function reload(): Promise<void> {
  const record = opened.value;
  if (!record) return;
  const { source, title } = record;
  if (source.kind === 'script') return openScript(title, { wanted: true, keepView: true });
  if (!source.handle) return chooseAgain();
  try {
    await openFile(await source.handle.getFile(), { handle: source.handle, keepView: true });
  } catch {
    refusal.value = `${title} cannot be read again: it was moved, or the browser forbids it. Drop the file here.`;
  }
}

/** Files that were chosen in a dialog can be read once only. */
function chooseAgain(): void {
  document.getElementById(openId)?.click();
}

/** Sentences for what can go wrong on the way. */
async function reporting(title: string, work: (signal: AbortSignal) => Promise<void>): Promise<void> {
  current.abort();
  const mine = (current = new AbortController());
  reading.value = { title, part: 0 };
  try {
    await work(mine.signal);
  } catch (error) {
    if (!mine.signal.aborted) refusal.value = `${title} cannot be shown. ${sentence(error)}`;
  } finally {
    if (!mine.signal.aborted) reading.value = undefined;
  }
}

function sentence(error: unknown): string {
  if (error instanceof NoRecord || error instanceof NoView) return error.message;
  if (error instanceof RangeError) return 'It needs more memory than the browser gives to a page.';
  if (error instanceof DOMException)
    return 'The browser could not read the file: is it a folder, or was it moved?';
  return `The page failed on it: ${String(error)}`;
}

/** The record that a page beside it shows without being asked; `?record=NAME.js` names another one in its folder. */
export function recordBeside(): { name: string; wanted: boolean } {
  const wanted = new URLSearchParams(location.search).get('record');
  if (wanted && /^[^/\\:?#]+\.js$/i.test(wanted) && !wanted.startsWith('.'))
    return { name: wanted, wanted: true };
  return { name: 'profiler.js', wanted: false };
}

/** Loads a record beside the page as a script, since browsers do not let a page read its neighbours as text. */
export async function openScript(
  name: string,
  { wanted = false, keepView = false }: { wanted?: boolean; keepView?: boolean },
): Promise<void> {
  await reporting(name, async (signal) => {
    let large = false;
    const outcome = await loadScript(name, signal, () => {
      large = true;
      reading.value = { title: name, part: undefined, large };
    });
    batch(() => {
      if (outcome.kind === 'record') place(outcome.raw, name, { kind: 'script' }, keepView);
      else if (outcome.kind === 'nothing') refusal.value = noList(name, outcome.error, large);
      else if (wanted)
        refusal.value = `There is no record ${name} beside this page, or it is too large for a script: drop the file here.`;
    });
  });
}

function noList(name: string, error: string | undefined, large: boolean): string {
  const hint = 'Drop the file here or open it: then it is read as text.';
  if (error)
    return `${name} is no valid script: a quote, a backslash or a line break in a name makes it so. ${hint}`;
  return large
    ? `${name} is too large for a script: browsers take about 500 MB. ${hint}`
    : `${name} declares no list "threads": it is another program's script, or a name in it makes it so. ${hint}`;
}
