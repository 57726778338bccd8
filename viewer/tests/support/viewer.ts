// The browser of a test file, and the page of each test in it.
import type { Browser, Page } from 'playwright-core';
import { afterAll, afterEach, beforeAll, expect } from 'vitest';
import { launchBrowser, openViewer, painted, type Opened, type OpenOptions } from './browser';

export interface Viewer {
  /** What the running test has opened. */
  readonly opened: Opened;
  open: (options?: OpenOptions) => Promise<Page>;
  browser: () => Browser;
}

/** After each test nothing may have been asked for but files, and nothing complained of. */
export function viewerOfTests(): Viewer {
  let browser: Browser | undefined;
  let opened: Opened | undefined;
  beforeAll(async () => {
    browser = await launchBrowser();
  });
  afterEach(async () => {
    const { requests, complaints } = opened ?? { requests: [], complaints: [] };
    await opened?.page.evaluate(() => localStorage.clear());
    await opened?.close();
    opened = undefined;
    expect(requests.filter((address) => !/^(file|blob|data):/.test(address))).toEqual([]);
    expect(complaints).toEqual([]);
  });
  afterAll(() => browser?.close());
  return {
    get opened() {
      return opened!;
    },
    browser: () => browser!,
    open: async (options) => {
      opened = await openViewer(browser!, options);
      opened.page.setDefaultTimeout(10_000);
      return opened.page;
    },
  };
}

export const status = (page: Page) => page.locator('.status').innerText();
export const details = (page: Page) => page.locator('.details').innerText();
export const rangeOf = async (page: Page) => /[\d.]+(?: \S+)? to [^:]+/.exec(await status(page))?.[0];

/** Whether a view's tab is the selected one: "true" or "false". */
export const isShown = (page: Page, view: string) =>
  page.getByRole('tab', { name: view }).getAttribute('aria-selected');

export async function press(page: Page, ...keys: string[]): Promise<void> {
  for (const key of keys) await page.keyboard.press(key);
}

/** Cells of the rows of a table that are in view. */
export async function cells(page: Page, label: string): Promise<string[][]> {
  const rows = page.getByRole('grid', { name: label }).locator('.table-row');
  return rows.evaluateAll((all) => all.map((row) => [...row.children].map((cell) => cell.textContent!)));
}

/** Where boxes of the selection's frame are drawn: the pixels of the canvas that have its colour, as a box. */
export async function selectionFrame(
  page: Page,
  chart = '.chart canvas',
): Promise<{ left: number; top: number; right: number; bottom: number } | undefined> {
  await painted(page);
  return page.locator(chart).evaluate((element) => {
    const canvas = element as HTMLCanvasElement;
    const { width, height } = canvas;
    const { data } = canvas.getContext('2d')!.getImageData(0, 0, width, height);
    let [left, top, right, bottom] = [width, height, -1, -1];
    for (let y = 22; y < height; ++y)
      for (let x = 0; x < width; ++x) {
        const at = (y * width + x) * 4;
        if (data[at] !== 0x0b || data[at + 1] !== 0x57 || data[at + 2] !== 0xd0) continue;
        [left, right] = [Math.min(left, x), Math.max(right, x)];
        [top, bottom] = [Math.min(top, y), Math.max(bottom, y)];
      }
    return right < 0 ? undefined : { left, top, right, bottom };
  });
}
