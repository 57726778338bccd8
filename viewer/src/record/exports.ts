// Records in the forms that other programs read. Each gives its text in parts, so that a large one needs no large text.
import { Walker } from './walk';
import type { Profile } from './profile';
import type { NameRow } from './statistics';

const partLength = 1 << 16;

/** Joins small texts to parts of a sensible size. */
function* inParts(texts: Iterable<string>): Generator<string> {
  let part = '';
  for (const text of texts) {
    part += text;
    if (part.length < partLength) continue;
    yield part;
    part = '';
  }
  if (part) yield part;
}

/** Nanoseconds as microseconds with three decimals. */
function microseconds(nanoseconds: number): string {
  const whole = Math.floor(nanoseconds / 1000);
  return `${whole}.${String(nanoseconds - whole * 1000).padStart(3, '0')}`;
}

const nanoseconds = (milliseconds: number) => Math.round(milliseconds * 1e6);

/**
 * Chrome's trace events: complete events, a parent before what is inside it. A duration is the difference of the rounded
 * ends, so that what is nested stays nested.
 */
export function chromeTrace(profile: Profile): Generator<string> {
  return inParts(chromeEvents(profile));
}

function* chromeEvents(profile: Profile): Generator<string> {
  const { names, blocks, begin, end, threads } = profile;
  const quoted = names.map((name) => JSON.stringify(name));
  const walker = new Walker(profile);
  yield '{"displayTimeUnit":"ms","traceEvents":[\n';
  let separator = '';
  for (const [index, thread] of threads.entries()) {
    // Numbered by place: a thread's id may be in the record twice, or not at all.
    const id = index + 1;
    yield `${separator}{"ph":"M","pid":1,"tid":${id},"name":"thread_name","args":{"name":${JSON.stringify(thread.name)}}}`;
    separator = ',\n';
    for (const interval of inOrder(walker, index)) {
      const from = nanoseconds(begin[interval]!);
      const length = nanoseconds(end[interval]!) - from;
      const name = quoted[blocks[profile.block[interval]!]!.name]!;
      const open = ['', ',"args":{"open":true}', ',"args":{"timesLost":true}'][profile.open[interval]!]!;
      yield `,\n{"ph":"X","pid":1,"tid":${id},"ts":${microseconds(from)},"dur":${microseconds(length)},"name":${name}${open}}`;
    }
  }
  yield '\n]}\n';
}

function inOrder(walker: Walker, thread: number): number[] {
  const order: number[] = [];
  walker.walk(
    thread,
    (id) => order.push(id),
    () => {},
  );
  return order;
}

/** speedscope's own form: a list of begins and ends for each thread, in milliseconds. */
export function speedscope(profile: Profile, title: string): Generator<string> {
  return inParts(speedscopeParts(profile, title));
}

function* speedscopeParts(profile: Profile, title: string): Generator<string> {
  const walker = new Walker(profile);
  const frames = profile.names.map((name) => JSON.stringify({ name }));
  yield '{"$schema":"https://www.speedscope.app/file-format-schema.json","exporter":"kexlib",';
  yield `"name":${JSON.stringify(title)},"shared":{"frames":[${frames.join(',')}]},"profiles":[`;
  for (const [index, thread] of profile.threads.entries()) {
    yield `${index > 0 ? ',' : ''}\n{"type":"evented","name":${JSON.stringify(thread.name)},"unit":"milliseconds",`;
    yield `"startValue":0,"endValue":${profile.last},"events":[`;
    yield* speedscopeEvents(profile, walker, index);
    yield ']}';
  }
  yield '\n]}\n';
}

function* speedscopeEvents(profile: Profile, walker: Walker, thread: number): Generator<string> {
  const events: number[] = []; // id for a begin, ~id for an end
  walker.walk(
    thread,
    (id) => events.push(id),
    (id) => events.push(~id),
  );
  let separator = '';
  let now = 0; // what a damaged record has out of order is put in order
  for (const event of events) {
    const id = event < 0 ? ~event : event;
    const frame = profile.blocks[profile.block[id]!]!.name;
    now = Math.max(now, event < 0 ? profile.end[id]! : profile.begin[id]!);
    yield `${separator}{"type":"${event < 0 ? 'C' : 'O'}","frame":${frame},"at":${now}}`;
    separator = ',';
  }
}

const columns = ['count', 'open', 'total', 'self', 'mean', 'median', 'min', 'max', 'deviation'] as const;

/**
 * Statistics as comma-separated values; times in milliseconds, an empty field where there is no figure. Figures have ten
 * digits, behind which is only what sums of decimal fractions leave.
 */
export function csv(profile: Profile, rows: readonly NameRow[]): string {
  const figure = (value: number) => (Number.isNaN(value) ? '' : Number(value.toPrecision(10)));
  const lines = rows.map((row) =>
    [cell(profile.names[row.name]!), ...columns.map((column) => figure(row[column]))].join(','),
  );
  return ['name,' + columns.join(','), ...lines, ''].join('\r\n');
}

/** Tables take what begins with one of these for a formula: behind an apostrophe it is a text. */
function cell(text: string): string {
  const guarded = /^[=+\-@\t\r]/.test(text) ? `'${text}` : text;
  return `"${guarded.replaceAll('"', '""')}"`;
}
