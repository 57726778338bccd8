// What `./kex build viewer` makes; tests take it, not the sources.
import { fileURLToPath } from 'node:url';

const built = process.env.KEXLIB_VIEWER ?? fileURLToPath(new URL('../../../build/viewer', import.meta.url));

export const builtPage = `${built}/page/index.html`;
export const builtTool = `${built}/cli/profile_tool.mjs`;
