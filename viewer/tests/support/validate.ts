// Reads the exported forms as another program would, and says where they are not properly nested.

export interface Span {
  thread: string;
  name: string;
  begin: number;
  end: number;
  depth: number;
}

interface ChromeEvent {
  ph: string;
  tid: number;
  ts: number;
  dur: number;
  name: string;
  args?: { name?: string };
}

/** The spans of Chrome's trace events in their order. Throws where one sticks out of the one around it. */
export function spansOfChrome(text: string): Span[] {
  const { traceEvents } = JSON.parse(text) as { traceEvents: ChromeEvent[] };
  const threads = new Map<number, string>();
  const stacks = new Map<number, { end: number }[]>();
  const spans: Span[] = [];
  // In nanoseconds, which are whole.
  const whole = (microseconds: number) => Math.round(microseconds * 1000);
  for (const event of traceEvents) {
    if (event.ph === 'M') {
      threads.set(event.tid, event.args!.name!);
      stacks.set(event.tid, []);
      continue;
    }
    if (event.ph !== 'X') throw new Error(`a phase "${event.ph}"`);
    const begin = whole(event.ts);
    const end = begin + whole(event.dur);
    const stack = stacks.get(event.tid)!;
    // Of two that touch, the first has ended, unless nothing lies between begin and end of the second.
    while (stack.length > 0 && stack.at(-1)!.end <= begin && stack.at(-1)!.end < Math.max(end, begin + 1))
      stack.pop();
    if (stack.length > 0 && stack.at(-1)!.end < end)
      throw new Error(`${event.name} at ${event.ts} sticks out`);
    spans.push({
      thread: threads.get(event.tid)!,
      name: event.name,
      begin: begin / 1e6,
      end: end / 1e6,
      depth: stack.length,
    });
    stack.push({ end });
  }
  return spans;
}

interface SpeedscopeFile {
  shared: { frames: { name: string }[] };
  profiles: {
    type: string;
    name: string;
    unit: string;
    startValue: number;
    endValue: number;
    events: { type: 'O' | 'C'; frame: number; at: number }[];
  }[];
}

/** The spans of speedscope's evented form in the order of their begin. Throws on what its reader would refuse. */
export function spansOfSpeedscope(text: string): Span[] {
  const file = JSON.parse(text) as SpeedscopeFile;
  const spans: Span[] = [];
  for (const profile of file.profiles) {
    if (profile.type !== 'evented' || profile.unit !== 'milliseconds')
      throw new Error(`a profile of ${profile.type}`);
    const stack: { frame: number; span: Span }[] = [];
    let now = profile.startValue;
    for (const { type, frame, at } of profile.events) {
      if (at < now) throw new Error(`time goes back to ${at}`);
      now = at;
      if (type === 'O') {
        const span = {
          thread: profile.name,
          name: file.shared.frames[frame]!.name,
          begin: at,
          end: NaN,
          depth: stack.length,
        };
        spans.push(span);
        stack.push({ frame, span });
      } else {
        const top = stack.pop();
        if (top?.frame !== frame) throw new Error(`frame ${frame} is closed, but ${top?.frame} is open`);
        top.span.end = at;
      }
    }
    if (stack.length > 0) throw new Error(`${stack.length} frames stay open`);
    if (now > profile.endValue) throw new Error('events after the end');
  }
  return spans;
}
