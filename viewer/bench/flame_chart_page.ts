// Runs in the page: reads the record as the viewer does, and shows it with the library.
import { FlameChartContainer, FlameChartPlugin, TimeGridPlugin, type FlameChartNodes } from 'flame-chart-js';
import { makeProfile, type Profile } from '../src/record/profile';
import { readText } from '../src/record/text_reader';
import { Walker } from '../src/record/walk';

/** One tree for each thread, as the library takes it. */
function trees(profile: Profile): FlameChartNodes[] {
  const walker = new Walker(profile);
  return profile.threads.map((_, thread) => {
    const top: FlameChartNodes = [];
    const stack = [top];
    walker.walk(
      thread,
      (id) => {
        const start = profile.begin[id]!;
        const name = profile.names[profile.blocks[profile.block[id]!]!.name]!;
        const children: FlameChartNodes = [];
        stack[stack.length - 1]!.push({ name, start, duration: profile.end[id]! - start, children });
        stack.push(children);
      },
      () => stack.pop(),
    );
    return top;
  });
}

/** Milliseconds from the file to the first picture. */
async function show(file: File): Promise<number> {
  const start = performance.now();
  const data = trees(makeProfile(readText(new Uint8Array(await file.arrayBuffer()))));
  const lanes = data.map((tree, index) => new FlameChartPlugin({ data: tree, name: `Thread ${index}` }));
  const canvas = document.querySelector('canvas')!;
  new FlameChartContainer({ canvas, plugins: [new TimeGridPlugin({}), ...lanes], settings: {} }).render();
  await new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)));
  return performance.now() - start;
}

/** Levels of nesting that the library takes before its recursion fails. */
function deepest(): number {
  let reached = 0;
  for (const levels of [1000, 2000, 4000, 8000, 16000]) {
    const top: FlameChartNodes = [];
    let children = top;
    for (let level = 0; level < levels; ++level) {
      const inner: FlameChartNodes = [];
      children.push({ name: 'x', start: 0, duration: 1, children: inner });
      children = inner;
    }
    try {
      new FlameChartPlugin({ data: top, name: 'deep' });
    } catch {
      break;
    }
    reached = levels;
  }
  return reached;
}

export interface Measured {
  show: typeof show;
  deepest: typeof deepest;
}

(window as unknown as { measured: Measured }).measured = { show, deepest };
