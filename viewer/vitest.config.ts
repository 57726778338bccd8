import { defineConfig } from 'vitest/config';

const inNode = ['record', 'cli', 'real'].map((subject) => ({ subject, folder: subject, browser: '' }));
const inBrowsers = ['chromium', 'firefox'].map((browser) => ({ subject: browser, folder: 'page', browser }));

export default defineConfig({
  test: {
    fileParallelism: false,
    projects: [...inNode, ...inBrowsers].map(({ subject, folder, browser }) => ({
      test: {
        name: subject,
        include: [`tests/${folder}/**/*.test.ts`],
        env: { VIEWER_BROWSER: browser },
        testTimeout: 60_000,
        expect: { poll: { timeout: 10_000 } }, // a machine with much else to do takes longer than the usual second
        hookTimeout: 60_000,
      },
    })),
  },
});
