// What `./kex build viewer` makes; tests take it, not the sources.
import { resolve } from 'node:path';

/** kex says where; by hand, from this folder, it is where kex puts it. */
export const builtFolder = resolve(process.env.KEXLIB_VIEWER ?? '../build/mingw-release/viewer');

export const builtPage = `${builtFolder}/page/index.html`;
export const builtTool = `${builtFolder}/cli/profile_tool.mjs`;
