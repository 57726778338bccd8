import type { Page } from 'playwright-core';

interface Watch {
  longest: number;
}

/** What work gives, and the most milliseconds that the page stood still meanwhile. */
export async function watchingStandstill<Result>(
  page: Page,
  work: () => Promise<Result>,
): Promise<Result & Watch> {
  const watch = await page.evaluateHandle(() => {
    const made: Watch = { longest: 0 };
    new PerformanceObserver((list) => {
      for (const { duration } of list.getEntries()) made.longest = Math.max(made.longest, duration);
    }).observe({ type: 'longtask' });
    return made;
  });
  const result = await work();
  return { ...result, ...(await watch.jsonValue()) };
}
