// Pages in Debian's Chromium, moved by real mouse and keys.
import { copyFileSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { chromium, type Browser, type BrowserContextOptions, type Page } from 'playwright-core';
import { builtPage } from './built';

export const chromiumPath = '/usr/bin/chromium';

/** Chromium's own sandbox does not work for root, as whom containers run. */
export const launchBrowser = (): Promise<Browser> =>
  chromium.launch({ executablePath: chromiumPath, args: process.getuid?.() === 0 ? ['--no-sandbox'] : [] });

/** A page in a folder of its own, with everything that it asked for and complained of. */
export interface Opened {
  page: Page;
  folder: string;
  /** All addresses asked for. */
  requests: string[];
  /** Errors of scripts and refusals of the policy. */
  complaints: string[];
  close: () => Promise<void>;
}

export interface OpenOptions extends BrowserContextOptions {
  /** Files beside the page, by name. */
  files?: Record<string, string | Uint8Array>;
  query?: string;
}

export async function openViewer(
  browser: Browser,
  { files = {}, query = '', ...options }: OpenOptions = {},
): Promise<Opened> {
  const folder = mkdtempSync(join(tmpdir(), 'viewer '));
  copyFileSync(builtPage, join(folder, 'viewer.html'));
  for (const [name, content] of Object.entries(files)) writeFileSync(join(folder, name), content);
  const context = await browser.newContext({
    viewport: { width: 1280, height: 800 },
    colorScheme: 'light',
    ...options,
  });
  const page = await context.newPage();
  const requests: string[] = [];
  const complaints: string[] = [];
  context.on('request', (request) => requests.push(request.url()));
  page.on('pageerror', (error) => complaints.push(error.message));
  page.on('console', (message) => {
    if (message.type() === 'error') complaints.push(message.text());
  });
  await page.goto(pathToFileURL(join(folder, 'viewer.html')).href + query);
  await page.locator('.status, .welcome, .refusal').first().waitFor();
  return {
    page,
    folder,
    requests,
    complaints,
    close: async () => {
      await context.close();
      rmSync(folder, { recursive: true });
    },
  };
}

/** Drops a file onto the middle of the page, as the system's file manager would. */
export async function dropFile(page: Page, path: string): Promise<void> {
  const session = await page.context().newCDPSession(page);
  const { width, height } = page.viewportSize()!;
  const data = { items: [], files: [path], dragOperationsMask: 1 };
  for (const type of ['dragEnter', 'dragOver', 'drop'] as const)
    await session.send('Input.dispatchDragEvent', { type, x: width / 2, y: height / 2, data });
}

/** Chooses a file in the dialog that a button opens. */
export async function chooseFile(page: Page, open: () => Promise<unknown>, path: string): Promise<void> {
  const [chooser] = await Promise.all([page.waitForEvent('filechooser'), open()]);
  await chooser.setFiles(path);
}
