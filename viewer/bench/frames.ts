import type { Page } from 'playwright-core';

const duration = 3000;

/** Frames a second while the mouse moves a chart to and fro and while the wheel zooms it, zoomed in a little first. */
export async function framesPerSecond(
  page: Page,
  canvas: string,
): Promise<{ moving: number; zooming: number }> {
  const box = (await page.locator(canvas).first().boundingBox())!;
  const [x, y] = [box.x + box.width / 2, box.y + box.height / 2];
  await page.mouse.move(x, y);
  await zoom(page, -200);
  const moving = await counted(page, async (until) => {
    await page.mouse.down();
    for (let step = 0; Date.now() < until; ++step) await page.mouse.move(x + 300 * Math.sin(step / 12), y);
    await page.mouse.up();
  });
  await page.mouse.move(x, y);
  const zooming = await counted(page, async (until) => {
    for (let step = 0; Date.now() < until; ++step) await zoom(page, step % 80 < 40 ? -40 : 40);
  });
  return { moving, zooming };
}

async function zoom(page: Page, delta: number): Promise<void> {
  await page.keyboard.down('Control');
  await page.mouse.wheel(0, delta);
  await page.keyboard.up('Control');
}

/** Frames that the page has drawn while `work` was done. */
async function counted(page: Page, work: (until: number) => Promise<void>): Promise<number> {
  await page.evaluate(() => {
    const counter = window as unknown as { frames?: number; start?: number };
    counter.frames = 0;
    counter.start = performance.now();
    const count = () => {
      if (counter.frames === undefined) return;
      ++counter.frames;
      requestAnimationFrame(count);
    };
    requestAnimationFrame(count);
  });
  await work(Date.now() + duration);
  return page.evaluate(() => {
    const counter = window as unknown as { frames?: number; start?: number };
    const rate = (counter.frames! * 1000) / (performance.now() - counter.start!);
    counter.frames = undefined;
    return rate;
  });
}
