// Makes the pictures of the page in docs/images, from the records of a program that counted this repository's lines:
// scripts/update_pictures runs both.
import { mkdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import type { Page } from 'playwright-core';
import { dropFile, launchBrowser, openViewer, painted } from '../tests/support/browser';

const records = '../build/records';
const images = '../docs/images';
const files = {
  'profiler.js': readFileSync(`${records}/profiler.js`),
  'counting.js': readFileSync(`${records}/counting.js`),
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
  await viewer.page.mouse.move(1060, 18); // over nothing
  await painted(viewer.page);
  await viewer.page.screenshot({ path: join(images, name) });
  await viewer.close();
}

const press = async (page: Page, ...keys: string[]) => {
  for (const key of keys) await page.keyboard.press(key);
};

const search = async (page: Page, text: string) => {
  await press(page, 'Control+f');
  await page.keyboard.type(text);
  await press(page, 'Enter');
};

const compare = async (page: Page, folder: string, view: string) => {
  await press(page, '4');
  await dropFile(page, join(folder, 'profiler.js'));
  await page.getByRole('tab', { name: view }).click();
};

await picture('viewer_timeline.png', 'light', '', async (page) => {
  await search(page, 'profiler.cpp');
  await press(page, 'Escape', '-', '-', '-', '-');
});
await picture('viewer_search.png', 'light', '', async (page) => {
  await search(page, 'profiler.cpp');
  await page.getByRole('button', { name: 'All hits' }).click();
});
await picture('viewer_span.png', 'dark', '', async (page) => {
  const { y } = (await page.locator('.chart canvas').boundingBox())!;
  await page.keyboard.down('Shift');
  await page.mouse.move(300, y + 60);
  await page.mouse.down();
  await page.mouse.move(700, y + 60, { steps: 3 });
  await page.mouse.up();
  await page.keyboard.up('Shift');
  await page.locator('.list .table-row').first().waitFor();
});
await picture('viewer_flame_graph.png', 'dark', '', async (page) => {
  await press(page, '2', 'Shift+ArrowDown', 'Shift+ArrowDown');
});
await picture('viewer_call_tree.png', 'light', '', async (page) => {
  await press(page, '5');
  await page.locator('.table-row').first().click();
  await page.getByRole('grid').focus();
  await press(page, 'ArrowRight', 'ArrowDown', 'ArrowRight', 'ArrowDown', 'ArrowRight');
});
await picture('viewer_statistics.png', 'dark', '', async (page) => {
  await press(page, '3');
  await page.locator('.table-row').first().click();
});
await picture('viewer_compare.png', 'light', '?record=counting.js', async (page, folder) => {
  await compare(page, folder, 'Table');
  await page.locator('.table-row').first().click();
});
await picture('viewer_timelines.png', 'light', '?record=counting.js', (page, folder) =>
  compare(page, folder, 'Timelines'),
);
await picture('viewer_difference.png', 'dark', '?record=counting.js', (page, folder) =>
  compare(page, folder, 'Difference'),
);
await browser.close();
