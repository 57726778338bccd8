// A record beside the page is a script, and names in it can make it do more than declare a list. So it runs in a frame
// of its own, which has nothing to take and no way out: it cannot reach the page, navigate, submit, open or connect.
import { NoRecord, type RawRecord } from '../record/record';
import { receiveRecord } from '../record/received';
import { readScript } from '../record/script_reader';

const marker = '#record-script=';

type Message =
  | { kind: 'record'; raw: RawRecord }
  | { kind: 'missing' }
  /** It ran and declared nothing; `error` is what the browser said. */
  | { kind: 'nothing'; error: string | undefined }
  | { kind: 'refused'; why: string };

/** The script that this document is to run, if it is such a frame. */
export function scriptOfFrame(): string | undefined {
  if (parent === window || !location.hash.startsWith(marker)) return undefined;
  return decodeURIComponent(location.hash.slice(marker.length));
}

/** Runs the script of a record and tells the page what it declared. */
export function runScript(name: string): void {
  const tell = (message: Message, transfer: Transferable[] = []) =>
    parent.postMessage(message, { targetOrigin: '*', transfer });
  let error: string | undefined;
  addEventListener('error', (event) => (error ??= event.message || undefined));
  const script = document.createElement('script');
  // Each byte of a name as a character of its own, whatever its code page. Browsers parse a script of this encoding
  // beside the page's thread, so that the page can say how long it takes.
  script.setAttribute('charset', 'windows-1252');
  script.src = encodeURIComponent(name);
  script.onerror = () => tell({ kind: 'missing' });
  script.onload = () => {
    const { threads } = globalThis as { threads?: unknown };
    if (threads === undefined) return tell({ kind: 'nothing', error });
    try {
      const raw = readScript(threads);
      tell({ kind: 'record', raw }, [raw.begin.buffer, raw.end.buffer]);
    } catch (problem) {
      const why =
        problem instanceof NoRecord
          ? problem.message
          : 'It needs more memory than the browser gives to a page.';
      tell({ kind: 'refused', why });
    }
  };
  document.head.append(script);
}

export type FromScript =
  { kind: 'record'; raw: RawRecord } | { kind: 'missing' } | { kind: 'nothing'; error: string | undefined };

/**
 * Loads a record beside the page in a frame. Throws NoRecord for what is none, and where `signal` ended it. `onSlow` is
 * called while a large script is still on its way.
 */
export function loadScript(name: string, signal: AbortSignal, onSlow: () => void): Promise<FromScript> {
  const frame = document.createElement('iframe');
  // A file: frame without its file's origin may not load the neighbour; with it, browsers still keep it from the page,
  // since to them no two such documents have one origin. From a server it needs none.
  frame.setAttribute(
    'sandbox',
    location.protocol === 'file:' ? 'allow-scripts allow-same-origin' : 'allow-scripts',
  );
  frame.hidden = true;
  frame.title = name;
  frame.src = `${location.href.replace(/[?#].*$/, '')}${marker}${encodeURIComponent(name)}`;
  return new Promise<FromScript>((resolve, reject) => {
    const slow = setTimeout(onSlow, patience);
    const end = () => {
      clearTimeout(slow);
      removeEventListener('message', onMessage);
      frame.remove();
    };
    const onMessage = ({ source, data }: MessageEvent<unknown>) => {
      if (source !== frame.contentWindow) return;
      // The script may have sent it: anything may be missing.
      const message = (typeof data === 'object' && data !== null ? data : {}) as Partial<Message>;
      end();
      try {
        if (message.kind === 'record') resolve({ kind: 'record', raw: receiveRecord(message.raw) });
        else if (message.kind === 'missing') resolve({ kind: 'missing' });
        else if (message.kind === 'nothing') resolve({ kind: 'nothing', error: asSentence(message.error) });
        else
          throw new NoRecord(asSentence((message as { why?: unknown }).why) ?? 'The script gave no record.');
      } catch (error) {
        reject(error as Error);
      }
    };
    addEventListener('message', onMessage);
    signal.addEventListener('abort', () => {
      end();
      reject(new NoRecord('It was not waited for.'));
    });
    document.body.append(frame);
  });
}

/** A script that is not there after so many milliseconds is a large one. */
const patience = 250;

function asSentence(value: unknown): string | undefined {
  return typeof value === 'string' ? value.slice(0, 300) : undefined;
}
