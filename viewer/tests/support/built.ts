// What `./kex build viewer` makes; tests take it, not the sources.
const folder = process.env.KEXLIB_VIEWER;
if (!folder) throw new Error('KEXLIB_VIEWER does not name the built viewer: start this by ./kex');

export const builtFolder = folder;
export const builtPage = `${folder}/page/index.html`;
export const builtTool = `${folder}/cli/profile_tool.mjs`;
