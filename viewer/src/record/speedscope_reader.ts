// speedscope's own files: events that open and close frames, or stacks that were sampled.
import { RecordBuilder } from './builder';
import { NoRecord, type RawRecord } from './record';
import { SpanBuilder } from './span_builder';

const units: Readonly<Record<string, number>> = {
  nanoseconds: 1e-6,
  microseconds: 1e-3,
  milliseconds: 1,
  seconds: 1000,
};

type Fields = Readonly<Record<string, unknown>>;

export function readSpeedscope(frames: readonly unknown[], profiles: readonly unknown[]): RawRecord {
  const names = frames.map((frame) => {
    const { name } = fields(frame);
    return typeof name === 'string' ? name : '(name missing)';
  });
  const builder = new RecordBuilder();
  profiles.forEach((value, index) => {
    const profile = fields(value);
    const title = typeof profile.name === 'string' ? profile.name : `Profile ${index + 1}`;
    const scale = units[String(profile.unit)];
    if (scale === undefined)
      builder.report(title, `its unit is ${String(profile.unit)}: taken for milliseconds`);
    const start = typeof profile.startValue === 'number' ? profile.startValue : 0;
    const spans = new SpanBuilder();
    const report = (what: string) => builder.report(title, what);
    const nameOf = (frame: unknown) => names[Number(frame)] ?? '(name missing)';
    const time = (at: number) => (at - start) * (scale ?? 1);
    if (Array.isArray(profile.events)) readEvents(profile.events, nameOf, time, spans, report);
    else if (Array.isArray(profile.samples) && Array.isArray(profile.weights))
      readSamples(profile.samples, profile.weights, nameOf, scale ?? 1, spans);
    else report('it has neither events nor samples');
    spans.addTo(builder, title, title);
  });
  if (builder.intervals === 0) throw new NoRecord('The speedscope file holds no spans of time.');
  return { ...builder.finish(), exact: true };
}

function readEvents(
  events: readonly unknown[],
  nameOf: (frame: unknown) => string,
  time: (at: number) => number,
  spans: SpanBuilder,
  report: (what: string) => void,
): void {
  let wrong = 0;
  let now = -Infinity;
  for (const value of events) {
    const { type, frame, at } = fields(value);
    if (typeof at !== 'number' || at < now) ++wrong;
    else if (type === 'O') spans.begin(nameOf(frame), time((now = at)));
    else if (type === 'C' && spans.top === nameOf(frame)) spans.end(time((now = at)));
    else ++wrong;
  }
  if (wrong > 0) report(`${wrong} events are left out: they are out of order`);
}

/** What two samples in a row have in common from the top went on. */
function readSamples(
  samples: readonly unknown[],
  weights: readonly unknown[],
  nameOf: (frame: unknown) => string,
  scale: number,
  spans: SpanBuilder,
): void {
  let now = 0;
  let stack: unknown[] = [];
  const closeTo = (depth: number) => {
    while (spans.depth > depth) spans.end(now * scale);
  };
  samples.forEach((value, index) => {
    const sample = Array.isArray(value) ? (value as unknown[]) : [];
    let common = 0;
    while (common < sample.length && common < stack.length && sample[common] === stack[common]) ++common;
    closeTo(common);
    for (let at = common; at < sample.length; ++at) spans.begin(nameOf(sample[at]), now * scale);
    stack = sample;
    const weight = Number(weights[index] ?? 0);
    now += weight > 0 ? weight : 0;
  });
  closeTo(0);
}

function fields(value: unknown): Fields {
  return typeof value === 'object' && value !== null ? (value as Fields) : {};
}
