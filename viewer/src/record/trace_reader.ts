// Chrome's trace events, as far as they are spans on threads: complete events, begins and ends.
import { RecordBuilder } from './builder';
import { NoRecord, type RawRecord } from './record';
import { SpanBuilder } from './span_builder';

interface Span {
  name: string;
  /** Microseconds; Infinity for one that never ends. */
  begin: number;
  end: number;
}

interface ThreadSpans {
  name: string | undefined;
  pid: string;
  tid: string;
  spans: Span[];
  open: Span[];
  /** Ends without their begin. */
  strayEnds: number;
}

/** Stamps with three decimals may be off in the last place of the number. */
const nanosecond = 1e-3;

export function readTrace(events: readonly unknown[], cut: boolean): RawRecord {
  const threads = new Map<string, ThreadSpans>();
  const processes = new Map<string, string>();
  let skipped = 0;
  for (const value of events) {
    const event = (typeof value === 'object' && value !== null ? value : {}) as Record<string, unknown>;
    const { ph, ts, dur, name, args } = event;
    const pid = String(event.pid ?? '');
    const tid = String(event.tid ?? '');
    const thread = () => {
      const key = `${pid}/${tid}`;
      const known = threads.get(key) ?? { name: undefined, pid, tid, spans: [], open: [], strayEnds: 0 };
      threads.set(key, known);
      return known;
    };
    const text = typeof name === 'string' ? name : '(name missing)';
    const time = typeof ts === 'number' ? ts : Number(ts ?? NaN);
    if (ph === 'M') {
      const given = (args as Record<string, unknown> | undefined)?.name;
      if (typeof given !== 'string') continue;
      if (name === 'thread_name') thread().name = given;
      else if (name === 'process_name') processes.set(pid, given);
    } else if (Number.isNaN(time)) ++skipped;
    else if (ph === 'X') {
      const length = typeof dur === 'number' ? dur : Number(dur ?? 0);
      if (length >= 0) thread().spans.push({ name: text, begin: time, end: time + length });
      else ++skipped;
    } else if (ph === 'B') {
      const { spans, open } = thread();
      const span = { name: text, begin: time, end: Infinity };
      spans.push(span);
      open.push(span);
    } else if (ph === 'E') {
      const known = thread();
      const span = known.open.pop();
      if (span) span.end = Math.max(span.begin, time);
      else ++known.strayEnds;
    } else ++skipped;
  }
  const builder = new RecordBuilder();
  const withSpans = [...threads.values()].filter(({ spans }) => spans.length > 0);
  if (withSpans.length === 0)
    throw new NoRecord('The file has trace events, but none that are spans of time on a thread.');
  let base = Infinity;
  for (const { spans } of withSpans) for (const { begin } of spans) base = Math.min(base, begin);
  for (const thread of withSpans) {
    const named = thread.name ? thread.name : `Thread ${thread.tid}`;
    const process = processes.get(thread.pid) ?? `process ${thread.pid}`;
    const several = new Set(withSpans.map(({ pid }) => pid)).size > 1;
    addThread(builder, thread, several ? `${process}: ${named}` : named, base);
  }
  if (skipped > 0)
    builder.report('the file', `${skipped} events are left out: they are no spans of time on a thread`);
  if (cut) builder.report('the file', 'the file ends before its list of events does');
  return { ...builder.finish(), exact: true };
}

/** A parent begins no later than what is in it, and ends no earlier. */
function addThread(builder: RecordBuilder, thread: ThreadSpans, name: string, base: number): void {
  const order = thread.spans.sort((a, b) => a.begin - b.begin || (a.end === b.end ? 0 : b.end - a.end));
  const spans = new SpanBuilder();
  const around: { end: number; isOpen: boolean }[] = [];
  let cut = 0;
  const milliseconds = (time: number) => (time - base) / 1000;
  const endOf = () => around[around.length - 1]?.end ?? Infinity;
  const close = () => {
    const { end, isOpen } = around.pop()!;
    spans.end(isOpen ? 0 : milliseconds(end));
  };
  for (const { name, begin, end } of order) {
    let from = begin;
    // Of two that touch the first one has ended, unless the second one takes no time.
    while (endOf() < begin || (endOf() <= begin + nanosecond / 2 && end > begin)) {
      from = Math.max(from, endOf());
      close();
    }
    const isOpen = end === Infinity;
    if (!isOpen && end > endOf() + nanosecond / 2) ++cut;
    spans.begin(name, milliseconds(from));
    around.push({ end: Math.min(Math.max(from, end), endOf()), isOpen });
  }
  while (around.length > 0) close();
  if (cut > 0)
    builder.report(name, `${cut} spans end after the one that they begin in: they are shown up to its end`);
  if (thread.strayEnds > 0) builder.report(name, `${thread.strayEnds} ends without their begin are left out`);
  spans.addTo(builder, name, name);
}
