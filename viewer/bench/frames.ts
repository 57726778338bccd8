import type { Page } from 'playwright-core';

const duration = 3000;

/** Milliseconds from one picture to the next. */
export interface Frames {
  median: number;
  /** All but the slowest twentieth are as quick as this. */
  p95: number;
}

/** While the mouse moves a chart to and fro, and while the wheel zooms it; zoomed in a little first. */
export async function measureFrames(
  page: Page,
  canvas: string,
): Promise<{ moving: Frames; zooming: Frames }> {
  const box = (await page.locator(canvas).first().boundingBox())!;
  const [x, y] = [box.x + box.width / 2, box.y + box.height / 2];
  await page.mouse.move(x, y);
  await zoom(page, -200);
  const moving = await timed(page, async (until) => {
    await page.mouse.down();
    for (let step = 0; Date.now() < until; ++step) await page.mouse.move(x + 300 * Math.sin(step / 12), y);
    await page.mouse.up();
  });
  await page.mouse.move(x, y);
  const zooming = await timed(page, async (until) => {
    for (let step = 0; Date.now() < until; ++step) await zoom(page, step % 80 < 40 ? -40 : 40);
  });
  return { moving, zooming };
}

async function zoom(page: Page, delta: number): Promise<void> {
  await page.keyboard.down('Control');
  await page.mouse.wheel(0, delta);
  await page.keyboard.up('Control');
}

interface Timing {
  stamps?: number[] | undefined;
}

/** The pictures that the page draws while `work` is done. */
async function timed(page: Page, work: (until: number) => Promise<void>): Promise<Frames> {
  await page.evaluate(() => {
    const timing = window as Timing;
    timing.stamps = [];
    const note = (time: number) => {
      if (!timing.stamps) return;
      timing.stamps.push(time);
      requestAnimationFrame(note);
    };
    requestAnimationFrame(note);
  });
  await work(Date.now() + duration);
  const stamps = await page.evaluate(() => {
    const timing = window as Timing;
    const { stamps } = timing;
    timing.stamps = undefined;
    return stamps!;
  });
  const times = stamps.slice(1).map((stamp, at) => stamp - stamps[at]!);
  times.sort((a, b) => a - b);
  return { median: times[times.length >> 1]!, p95: times[Math.floor(times.length * 0.95)]! };
}
