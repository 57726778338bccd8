// Makes the pictures of the page in docs/images, from the records that ./kex demo left:
//
//     ./kex demo && npm run pictures --prefix viewer
import { mkdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import type { Page } from 'playwright-core';
import { dropFile, launchBrowser, openViewer } from '../tests/support/browser';

const demo = '../build/demo';
const images = '../docs/images';
const files = {
  'profiler.js': readFileSync(`${demo}/profiler.js`),
  'counting.js': readFileSync(`${demo}/counting.js`),
};

const browser = await launchBrowser();
mkdirSync(images, { recursive: true });

async function picture(
  name: string,
  colorScheme: 'light' | 'dark',
  query: string,
  prepare: (page: Page, folder: string) => Promise<void>,
) {
  const viewer = await openViewer(browser, {
    files,
    query,
    colorScheme,
    viewport: { width: 1280, height: 600 },
  });
  await prepare(viewer.page, viewer.folder);
  await viewer.page.mouse.move(600, 18);
  // The last step has been drawn when a frame after it has.
  await viewer.page.evaluate(
    () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))),
  );
  await viewer.page.screenshot({ path: join(images, name) });
  await viewer.close();
}

const press = async (page: Page, ...keys: string[]) => {
  for (const key of keys) await page.keyboard.press(key);
};

await picture('viewer_timeline.png', 'light', '', async (page) => {
  await press(page, 'Control+f');
  await page.keyboard.type('profiler.cpp');
  await press(page, 'Enter', 'Escape', '-', '-', '-', '-');
});
await picture('viewer_flame_graph.png', 'dark', '', async (page) => {
  await press(page, '2');
  await page.mouse.click(300, 105);
});
await picture('viewer_statistics.png', 'dark', '', async (page) => {
  await press(page, '3');
  await page.locator('.table-row').first().click();
});
await picture('viewer_compare.png', 'light', '?record=counting.js', async (page, folder) => {
  await press(page, '4');
  await dropFile(page, join(folder, 'profiler.js'));
  await page.locator('.table-row').first().waitFor();
});
await browser.close();
