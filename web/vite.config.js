import { defineConfig } from 'vitest/config'

// The console that the development server shows. It must see the browser's own Host, or it takes the Origin for a foreign one.
const console = { target: process.env.CONSOLE ?? 'http://127.0.0.1:8025', changeOrigin: false }

export default defineConfig({
  base: '/',
  server: {
    host: '127.0.0.1',
    proxy: { '/api': console, '/file': console, '/upload': console, '/ws': { ...console, ws: true } },
  },
  oxc: { jsx: { runtime: 'automatic', importSource: 'preact' } },
  build: {
    outDir: 'dist',
    emptyOutDir: true,
    sourcemap: false,
    target: 'es2022',
    cssTarget: ['chrome123', 'firefox121', 'safari17.5'],
    // Inlined assets would become data: addresses, which the content security policy refuses for fonts and styles.
    assetsInlineLimit: 0,
    modulePreload: { polyfill: false },
  },
  test: { include: ['test/**/*.test.ts'], environment: 'node' },
})
