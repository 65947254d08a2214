import { expect, it } from 'vitest'

// From the ground up: a file imports from its own folder and from lower ones.
const floors = ['wire', 'model', 'i18n', 'state', 'parts', 'source', 'chart', 'terminal', 'controls', 'sign-in', 'shell', '']

const sources = import.meta.glob<string>('../src/**/*.{ts,tsx}', { query: '?raw', import: 'default', eager: true })

const folderOf = (path: string): string => /^\.\.\/src\/(?:(.*)\/)?[^/]*$/.exec(path)?.[1] ?? ''

it('no folder imports from one above it', () => {
  const wrong: string[] = []
  for (const [path, source] of Object.entries(sources)) {
    const folder = folderOf(path)
    expect(floors).toContain(folder)
    for (const [, target] of source.matchAll(/(?:from|import|import\()\s*'(\.[^']*)'/g)) {
      if (!target || target.endsWith('.css')) continue
      const plain = new URL(target, `file:///src/${folder}${folder && '/'}x`).pathname
      const other = floors.includes(plain.slice('/src/'.length)) ? plain.slice('/src/'.length) : folderOf(`..${plain}`)
      if (floors.indexOf(other) > floors.indexOf(folder)) wrong.push(`${path} imports ${target}`)
    }
  }
  expect(wrong).toEqual([])
})
