// Why the timeline is not drawn by flame-chart-js: the library with the same record, in a page of its own.
import type { Page } from 'playwright-core';
import { build } from 'vite';
import type { Measured } from './flame_chart_page';
import { measureFrames } from './frames';
import { pageMemory } from './memory';

type Tell = (what: string, figure: string) => void;

export async function measureFlameChart(page: Page, record: string, tell: Tell): Promise<void> {
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
  await page.setContent('<canvas width="1600" height="860"></canvas><input type="file" />');
  await page.addScriptTag({ content: result.output[0].code });
  await page.locator('input').setInputFiles(record);
  const time = await page.evaluate(() => {
    const { measured } = window as unknown as { measured: Measured };
    return measured.show(document.querySelector('input')!.files![0]!);
  });
  tell('first picture, the record chosen as a file', `${(time / 1000).toFixed(2)} s`);
  const { moving, zooming } = await measureFrames(page, 'canvas');
  tell('from picture to picture while it is moved: p95', `${moving.p95.toFixed(0)} ms`);
  tell('from picture to picture while it is zoomed: p95', `${zooming.p95.toFixed(0)} ms`);
  tell("most memory of the page's process", `${pageMemory().toFixed(0)} MB`);
  const levels = await page.evaluate(() => (window as unknown as { measured: Measured }).measured.deepest());
  tell('deepest record that it takes', `${levels} levels`);
}
