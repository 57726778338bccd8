// Why the timeline is not drawn by flame-chart-js: the library, with the record as it wants it, in a page of its own.
import { readFileSync } from 'node:fs';
import { build } from 'vite';
import type { Page } from 'playwright-core';
import { makeProfile, type Profile } from '../src/record/profile';
import { readText } from '../src/record/text_reader';
import { Walker } from '../src/record/walk';
import { framesPerSecond } from './frames';
import { pageMemory } from './memory';

interface FlameNode {
  name: string;
  start: number;
  duration: number;
  children: FlameNode[];
}

/** One tree for each thread, as the library takes it. */
function trees(profile: Profile): FlameNode[][] {
  const walker = new Walker(profile);
  return profile.threads.map((_, thread) => {
    const top: FlameNode[] = [];
    const stack = [top];
    walker.walk(
      thread,
      (id) => {
        const start = profile.begin[id]!;
        const name = profile.names[profile.blocks[profile.block[id]!]!.name]!;
        const node = { name, start, duration: profile.end[id]! - start, children: [] };
        stack[stack.length - 1]!.push(node);
        stack.push(node.children);
      },
      () => stack.pop(),
    );
    return top;
  });
}

export async function measureFlameChart(
  page: Page,
  record: string,
  tell: (what: string, figure: string) => void,
): Promise<void> {
  const output = await build({
    configFile: false,
    logLevel: 'error',
    build: {
      write: false,
      lib: { entry: `${process.cwd()}/bench/flame_chart_page.ts`, formats: ['iife'], name: 'bundle' },
    },
  });
  const [result] = Array.isArray(output) ? output : [output];
  if (!result || !('output' in result)) throw new Error('flame-chart-js cannot be bundled');
  await page.setContent('<canvas id="chart" width="1600" height="900"></canvas>');
  await page.addScriptTag({ content: result.output[0].code });
  await page.evaluate(
    (text) => void ((window as unknown as { data: unknown }).data = JSON.parse(text)),
    JSON.stringify(trees(makeProfile(readText(readFileSync(record))))),
  );
  const time = await page.evaluate(async () => {
    const { library, data } = window as unknown as {
      library: Record<string, new (options: unknown) => { render?: () => void }>;
      data: unknown[];
    };
    const start = performance.now();
    const plugins = data.map(
      (tree, index) => new library.FlameChartPlugin!({ data: tree, name: `Thread ${index}` }),
    );
    const canvas = document.getElementById('chart');
    const chart = new library.FlameChartContainer!({
      canvas,
      plugins: [new library.TimeGridPlugin!({}), ...plugins],
      settings: {},
    });
    chart.render?.();
    await new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)));
    return performance.now() - start;
  });
  tell('first picture, from a tree that is in memory', `${(time / 1000).toFixed(2)} s`);
  const { moving, zooming } = await framesPerSecond(page, '#chart');
  tell('frames a second while it is moved', moving.toFixed(1));
  tell('frames a second while it is zoomed', zooming.toFixed(1));
  tell("most memory of the page's process", `${pageMemory().toFixed(0)} MB`);
  tell('deepest record that it takes', await deepest(page));
}

/** Levels of nesting that the library takes before its recursion fails. */
async function deepest(page: Page): Promise<string> {
  const levels = await page.evaluate(() => {
    const { library } = window as unknown as { library: Record<string, new (options: unknown) => unknown> };
    let reached = 0;
    for (const levels of [1000, 2000, 4000, 8000, 16000]) {
      const top: unknown[] = [];
      let children = top;
      for (let level = 0; level < levels; ++level) {
        const inner: unknown[] = [];
        children.push({ name: 'x', start: 0, duration: 1, children: inner });
        children = inner;
      }
      try {
        new library.FlameChartPlugin!({ data: top, name: 'deep' });
      } catch {
        break;
      }
      reached = levels;
    }
    return reached;
  });
  return `${levels} levels`;
}
