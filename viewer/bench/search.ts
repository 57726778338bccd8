import type { Page } from 'playwright-core';
import { watchingStandstill } from './standstill';

interface Watch {
  shown?: number | undefined;
  found?: number | undefined;
}

/** Milliseconds from Enter to the figures of the first hit, to the number of all, and the longest that the page stood still. */
export async function measureSearch(
  page: Page,
  text: string,
): Promise<{ first: number; all: number; longest: number }> {
  await page.keyboard.press('Escape');
  await page.keyboard.press('Escape');
  await page.evaluate(() => {
    const watch: Watch = {};
    (window as unknown as { watch: Watch }).watch = watch;
    let start: number | undefined;
    addEventListener('keydown', ({ key, timeStamp }) => key === 'Enter' && (start ??= timeStamp), true);
    const look = () => {
      if (start !== undefined) {
        if (document.querySelector('.details h2')) watch.shown ??= performance.now() - start;
        if (
          /^[\d,\s]+ of [\d,]+$/.test(
            (document.querySelector('.hits') as HTMLElement | null)?.innerText ?? '',
          )
        )
          watch.found ??= performance.now() - start;
      }
      if (watch.found === undefined) requestAnimationFrame(look);
    };
    requestAnimationFrame(look);
  });
  return watchingStandstill(page, async () => {
    await page.keyboard.press('Control+f');
    await page.keyboard.insertText(text);
    await page.keyboard.press('Enter');
    await page.waitForFunction(
      () => {
        const { watch } = window as unknown as { watch: Watch };
        return watch.shown !== undefined && watch.found !== undefined;
      },
      undefined,
      { timeout: 60_000 },
    );
    const { shown, found } = await page.evaluate(() => (window as unknown as { watch: Watch }).watch);
    return { first: shown!, all: found! };
  });
}
