import { defineConfig } from 'vite';
import { outputFolder } from './output_folder';

export default defineConfig({
  build: {
    ssr: 'cli/main.ts',
    target: 'node18',
    outDir: `${outputFolder}/cli`,
    emptyOutDir: true,
    rollupOptions: { output: { entryFileNames: 'profile_tool.mjs' } },
  },
});
