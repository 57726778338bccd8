import type { Page } from 'playwright-core';
import { watchingStandstill } from './standstill';

/** Milliseconds from the key to the statistics of all names, and the longest that the page stood still. */
export async function measureStatistics(page: Page): Promise<{ all: number; longest: number }> {
  await page.keyboard.press('Escape'); // out of the search's field, which takes keys for text
  await page.keyboard.press('Escape');
  return watchingStandstill(page, async () => {
    const start = performance.now();
    await page.keyboard.press('3');
    await page.locator('.statistics .table-row').first().waitFor({ timeout: 60_000 });
    return { all: performance.now() - start };
  });
}
