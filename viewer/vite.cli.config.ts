import { defineConfig } from 'vite';

export default defineConfig({
  build: {
    ssr: 'cli/main.ts',
    target: 'node18',
    outDir: `${process.env.KEXLIB_VIEWER ?? '../build/viewer'}/cli`,
    emptyOutDir: true,
    rollupOptions: { output: { entryFileNames: 'profile_tool.mjs' } },
  },
});
