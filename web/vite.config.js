import { defineConfig } from 'vitest/config'

export default defineConfig({
  base: '/',
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
