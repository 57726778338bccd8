// What the build makes; tests take it, not the sources.
import { outputFolder } from '../../output_folder';

export const builtPage = `${outputFolder}/page/index.html`;
export const builtTool = `${outputFolder}/cli/profile_tool.mjs`;
