import { fileURLToPath } from 'node:url';

/** Where all that is made lies: the build says so; run by hand, npm takes the folder that ./kex builds in. */
export const outputFolder =
  process.env.KEXLIB_VIEWER_FOLDER ??
  fileURLToPath(new URL('../build/mingw-release/viewer', import.meta.url));
