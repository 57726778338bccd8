import { createHash } from 'node:crypto';
import { readFileSync } from 'node:fs';
import { defineConfig, type Plugin } from 'vite';
import { viteSingleFile } from 'vite-plugin-singlefile';
import { outputFolder } from './output_folder';

/** Texts of the licences of what the page bundles, for its help. */
function licences(): Plugin {
  const id = 'virtual:licences';
  return {
    name: 'licences',
    resolveId: (source) => (source === id ? '\0' + id : undefined),
    load(source) {
      if (source !== '\0' + id) return undefined;
      const read = (name: string) => readFileSync(new URL(name, import.meta.url), 'utf8');
      const { dependencies } = JSON.parse(read('package.json')) as { dependencies: Record<string, string> };
      const bundled = [...Object.keys(dependencies), '@preact/signals-core'].sort();
      const list = bundled.map((name) => {
        const { version, license } = JSON.parse(read(`node_modules/${name}/package.json`)) as Record<
          string,
          string
        >;
        return { name, version, licence: license, text: read(`node_modules/${name}/LICENSE`) };
      });
      return `export const licences = ${JSON.stringify(list)}`;
    },
  };
}

/** The policy allows this page's own script and style by their hashes, a record beside it, and no connection. */
function contentSecurityPolicy(): Plugin {
  const hashes = (html: string, tag: string) =>
    [...html.matchAll(new RegExp(`<${tag}[^>]*>([^]*?)</${tag}>`, 'g'))]
      .map(([, text]) => `'sha256-${createHash('sha256').update(text!).digest('base64')}'`)
      .join(' ');
  return {
    name: 'content-security-policy',
    enforce: 'post',
    generateBundle: {
      order: 'post', // after all is in the one file
      handler(_, bundle) {
        for (const file of Object.values(bundle)) {
          if (file.type !== 'asset' || !file.fileName.endsWith('.html')) continue;
          const html = String(file.source);
          const policy = [
            "default-src 'none'",
            "connect-src 'none'",
            `script-src ${hashes(html, 'script')} 'self' file:`,
            // The frame that runs a record's script: of this page only, wherever the script would lead it.
            "frame-src 'self' file:",
            `style-src ${hashes(html, 'style')}`,
            'img-src data:',
            "base-uri 'none'",
            "form-action 'none'",
          ].join('; ');
          file.source = html.replace(
            '<meta charset',
            `<meta http-equiv="Content-Security-Policy" content="${policy}" />\n    <meta charset`,
          );
        }
      },
    },
  };
}

export default defineConfig({
  plugins: [licences(), viteSingleFile({ removeViteModuleLoader: true }), contentSecurityPolicy()],
  build: {
    target: 'es2022',
    outDir: `${outputFolder}/page`,
    emptyOutDir: true,
    modulePreload: false,
  },
});
