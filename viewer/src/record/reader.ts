// Reads a file, whatever it is: a record as the library writes it, or one of another program.
import { NoRecord, type RawRecord } from './record';
import { readSpeedscope } from './speedscope_reader';
import { TextReader } from './text_reader';
import { readTrace } from './trace_reader';

/** Longer texts cannot be made: what JSON is parsed from. */
const longestText = 0x1fffffe8;

/** The first bytes of files that are often dropped by mistake. */
const known: readonly (readonly [begin: string, what: string])[] = [
  ['\x1f\x8b', 'it is compressed (gzip). Unpack it first'],
  ['PK\x03\x04', 'it is a zip archive. Unpack it first'],
  ['\x28\xb5\x2f\xfd', 'it is compressed (zstd). Unpack it first'],
  ['\x89PNG', 'it is a picture'],
  ['MZ', 'it is a Windows program'],
  ['\x7fELF', 'it is a program'],
  ['%PDF', 'it is a PDF document'],
];

/** Takes a file part by part. */
export class RecordReader {
  private text: TextReader | undefined;
  private isJson = false;
  private parts: Uint8Array[] = [];
  private size = 0;

  /** Throws NoRecord as soon as it is clear that the file cannot be read. */
  push(part: Uint8Array): void {
    if (this.text) return this.text.push(part);
    this.size += part.length;
    if (this.size > longestText)
      throw new NoRecord('The file is JSON of more than 512 MB, which is more than can be read.');
    this.parts.push(part);
    if (this.isJson) return;
    const begin = this.parts.length === 1 ? part : joined(this.parts);
    if (begin.length < 64) return;
    if (kindOf(begin) === 'text') this.readAsText();
    else this.isJson = true;
  }

  finish(): RawRecord {
    if (!this.text && kindOf(joined(this.parts)) === 'text') this.readAsText();
    return this.text ? this.text.finish() : readJson(this.parts);
  }

  private readAsText(): void {
    this.text = new TextReader();
    for (const part of this.parts) this.text.push(part);
    this.parts = [];
  }
}

function joined(parts: readonly Uint8Array[]): Uint8Array {
  // Only the beginning is looked at.
  const first = new Uint8Array(
    Math.min(
      64,
      parts.reduce((sum, { length }) => sum + length, 0),
    ),
  );
  let at = 0;
  for (const part of parts) {
    first.set(part.subarray(0, first.length - at), at);
    at += Math.min(part.length, first.length - at);
  }
  return first;
}

/** Throws NoRecord for what is neither. The brackets of a damaged record have no quotation mark after them. */
function kindOf(data: Uint8Array): 'text' | 'json' {
  const begin = String.fromCharCode(...data.subarray(0, 64));
  const found = known.find(([bytes]) => begin.startsWith(bytes));
  if (found) throw new NoRecord(`This is no profile record: ${found[1]}.`);
  return /^(?:\xef\xbb\xbf)?\s*(?:\{\s*["}]|\[\s*[{\]])/.test(begin) ? 'json' : 'text';
}

function readJson(parts: readonly Uint8Array[]): RawRecord {
  const decoder = new TextDecoder();
  let text = '';
  for (const part of parts) text += decoder.decode(part, { stream: true });
  text += decoder.decode();
  const { value, cut } = parse(text);
  if (Array.isArray(value)) return readTrace(value, cut);
  const { traceEvents, profiles, shared, nodes, timeDeltas, meta, threads } = value as Record<
    string,
    unknown
  >;
  if (Array.isArray(traceEvents)) return readTrace(traceEvents, cut);
  const frames = (shared as { frames?: unknown } | undefined)?.frames;
  if (Array.isArray(profiles) && Array.isArray(frames)) return readSpeedscope(frames, profiles);
  const other =
    Array.isArray(nodes) && Array.isArray(timeDeltas)
      ? "a CPU profile of Chrome's debugger"
      : meta && Array.isArray(threads)
        ? 'a profile of the Firefox profiler'
        : 'JSON of some other kind';
  throw new NoRecord(
    `The file is ${other}. What can be shown are the profiler's records, Chrome's trace events and speedscope's files.`,
  );
}

/** A list of trace events may lack its end: programs write it while they run. */
function parse(text: string): { value: object; cut: boolean } {
  try {
    return { value: JSON.parse(text) as object, cut: false };
  } catch {
    const list = /^\s*(?:\[|\{[^[\]{}]*"traceEvents"\s*:\s*\[)/.exec(text.slice(0, 65536));
    for (let end = text.length, tries = 0; list && tries < 100; ++tries) {
      end = text.lastIndexOf('}', end - 1);
      if (end < 0) break;
      try {
        const events = `[${text.slice(list[0].length, end + 1)}]`;
        return { value: JSON.parse(events) as object, cut: true };
      } catch {
        // That bracket is inside an event.
      }
    }
    throw new NoRecord('The file begins as JSON does, but is damaged or cut.');
  }
}
