import { describe, expect, it } from 'vitest'
import printable from '../../src/core/text/printable.cpp?raw'
import { de } from '../src/i18n/de'
import { en } from '../src/i18n/en'
import { noticesOf } from '../src/model/notices'
import { placeOf, questionHit, search } from '../src/model/search'
import { summarise } from '../src/model/toast-text'
import { visibleText } from '../src/model/visible-text'

const entry = (kind: string, text: string, error = '') => ({ time: '10:00:00', kind, text, ok: error === '', error })

function told(entries: ReturnType<typeof entry>[], total = entries.length, failed = entries.filter(e => !e.ok).length) {
  const summary = summarise(entries, total, failed)
  return [en.toast(summary), de.toast(summary)]
}

describe('what a toast says', () => {
  it('leaves out failures that were expected', () => {
    const expected = { ...entry('sql', 'DELETE * FROM iplog', 'syntax error'), expected: true }
    const failing = entry('option', 'set_option checkmx=0', 'no database')
    expect(told([expected, failing], 2, 1)[0]).toBe('Option checkmx was not set (1 of 2 steps failed)')
    expect(summarise([expected, failing], 2, 1).error).toBe('no database')
    expect(summarise([entry('option', 'set_option checkmx=0'), expected], 2, 0)).toMatchObject({ failed: false, others: [] })
  })

  it.each([
    [[entry('option', 'set_option checkmid=1')], 'Option checkmid set to 1', 'Option checkmid auf 1 gesetzt'],
    [[entry('option', 'set_string welcome=220 a=b')], 'Option welcome set to 220 a=b', 'Option welcome auf 220 a=b gesetzt'],
    [[entry('option', 'set_string welcome=')], 'Option welcome emptied', 'Option welcome geleert'],
    [
      [entry('registry', 'HKLM\\SOFTWARE\\M\\reload=1'), entry('option', 'set_option checkmx=0')],
      'Option checkmx set to 0, 1 more value set',
      'Option checkmx auf 0 gesetzt, 1 weiterer Wert gesetzt',
    ],
    [
      [entry('registry', 'delete HKLM\\SOFTWARE\\M\\language')],
      'Registry value language deleted',
      'Registrierungswert language gelöscht',
    ],
    [
      [entry('sql', 'DELETE FROM a'), entry('sql', 'DELETE FROM b'), entry('sql', 'DELETE FROM c', 'locked')],
      '3 steps run, 1 failed',
      '3 Schritte ausgeführt, 1 fehlgeschlagen',
    ],
    [
      [entry('option', 'set_option checkmx=0', 'no database')],
      'Option checkmx was not set',
      'Option checkmx wurde nicht gesetzt',
    ],
    [[entry('sql', 'A'), entry('sql', 'B')], '2 statements run', '2 Anweisungen ausgeführt'],
  ])('%#', (entries, english, german) => {
    expect(told(entries)).toEqual([english, german])
  })

  it('counts what was not sent along', () => {
    const entries = Array.from({ length: 50 }, (_, n) => entry('sql', `INSERT ${n}`))
    expect(told(entries, 10_000)[0]).toBe('10,000 statements run')
    // None of the failing ones is among the newest.
    expect(told(entries, 10_000, 3)[0]).toBe('10,000 steps run, 3 failed')
    expect(told([...entries.slice(1), entry('component', 'import entry')], 10_000)[0]).toBe(
      'Done: import entry, 9,999 statements run',
    )
  })
})

describe('a notice', () => {
  const message = (entries: ReturnType<typeof entry>[], more = {}) => ({
    type: 'activity' as const,
    first: 0,
    total: entries.length,
    failed: entries.filter(e => !e.ok).length,
    entries,
    ...more,
  })
  const version = { ...entry('option', 'set_string version=1.0'), routine: true }

  it('is what the act says, and else sums up what it wrote', () => {
    const added = entry('sql', 'INSERT 1')
    const said = [{ text: 'x added to the domain black list', tone: 'good' as const }]
    expect(noticesOf(message([added, version], { said }), 2)).toEqual({ said, summary: null })
    // Nothing was written, and nothing failed: it is told all the same.
    expect(noticesOf(message([], { said }), 0).said).toEqual(said)
    expect(en.toast(noticesOf(message([added, version]), 2).summary!)).toBe('1 statement run')
  })

  it('does not come of the showing of a page, unless that failed', () => {
    expect(noticesOf(message([version]), 1).summary).toBeNull()
    expect(noticesOf(message([entry('option', 'set_option autoimport=60')], { showing: true }), 1).summary).toBeNull()
    const failing = { ...version, ok: false, error: 'locked' }
    expect(noticesOf(message([failing], { showing: true }), 1).summary).toMatchObject({ failed: true, error: 'locked' })
  })
})

describe('foreign text', () => {
  it('shows what would not be seen or would turn the direction', () => {
    expect(visibleText('a\nb\r\tc\0\u001b\u007f')).toBe('a␊b␍␉c␀␛␡')
    expect(visibleText('x\u202egnp.exe\u2066\u0085\u2028')).toBe('x\ufffdgnp.exe\ufffd␤␤')
    expect(visibleText('<b>مرحبا</b> שלום 😀')).toBe('<b>مرحبا</b> שלום 😀')
    expect(visibleText('pay\u200bpal\u00ad.ex\u200cample\u{e0041}')).toBe('pay\ufffdpal\ufffd.ex\ufffdample\ufffd')
    expect(visibleText('a\ufe0f\u3164\ud800z\uffff')).toBe('a\ufffd\ufffd\ufffdz\ufffd')
  })

  it('keeps joiners and selectors where they have their place', () => {
    for (const text of ['❤️', '👨‍👩‍👧', '🏳️‍🌈', 'می‌خواهم', 'क्‍ष']) expect(visibleText(text)).toBe(text)
    expect(visibleText('می\u200c')).toBe('می\ufffd')
    expect(visibleText('😀\u200dx')).toBe('😀\ufffdx')
  })

  it('takes the same characters for unseen as the command line does', () => {
    const ranges = [...printable.matchAll(/\{0x([0-9A-F]+), 0x([0-9A-F]+)\}/g)]
    const inTable = new Set<number>()
    for (const [, first, last] of ranges) {
      for (let code = parseInt(first!, 16); code <= parseInt(last!, 16); ++code) inTable.add(code)
    }
    const wrong: string[] = []
    for (let code = 0; code <= 0x10ffff; ++code) {
      const character = String.fromCodePoint(code)
      if (inTable.has(code) !== (visibleText(character) !== character)) wrong.push(code.toString(16))
    }
    expect(ranges.length).toBeGreaterThan(40)
    expect(wrong).toEqual([])
  })

  it('is cut without splitting a character', () => {
    expect(visibleText('ab😀cd', 3)).toBe('ab…')
    expect(visibleText('abc', 3)).toBe('abc')
  })
})

describe('the search', () => {
  const pages = [
    { name: 'general', section: 'Settings', group: 'Settings', title: 'General' },
    { name: 'keywords', section: 'Lists', group: 'Lists', title: 'Keywords' },
    { name: 'strasse', section: 'Lists', group: 'Lists', title: 'Straße Größe' },
  ]
  const captions = {
    general: [
      { control: 'kw', text: 'Search subjects for keywords' },
      { control: 'kw', text: 'Every subject is compared with the keywords.' },
      { control: 'mx', text: 'Check the MX record' },
    ],
    keywords: [{ control: 'add', text: 'Add the word' }],
  }
  const found = (query: string) => search(query, pages, captions).map(hit => `${hit.page}/${hit.control}`)

  it('prefers pages, needs every word, and lists a control once', () => {
    expect(found('keyword')).toEqual(['keywords/', 'general/kw', 'keywords/add'])
    expect(found('mx check')).toEqual(['general/mx'])
    expect(found('mx keyword')).toEqual([])
  })

  it('cares neither for case nor for accents', () => {
    expect(found('STRASSE grosse')).toEqual(['strasse/'])
    expect(found('größe')).toEqual(['strasse/'])
  })

  it('finds what means the same, phrases too, and what was typed first', () => {
    const lists = {
      domains: [
        { control: 'add1', text: 'Add', frame: 'White list' },
        { control: 'add2', text: 'Add', frame: 'Black list' },
        { control: 'say', text: 'Blocked file names' },
      ],
    }
    const pages = [{ name: 'domains', section: 'Settings', group: 'Settings', title: 'Domains' }]
    const hits = (query: string) => search(query, pages, lists).map(hit => hit.control)
    for (const query of ['add whitelist', 'add white list', 'allow add', 'weiße Liste add', 'erlauben add']) {
      expect(hits(query), query).toEqual(['add1'])
    }
    for (const query of ['add blacklist', 'black list add', 'Sperrliste add']) expect(hits(query), query).toEqual(['add2'])
    expect(hits('block')[0]).toBe('say')
    expect(search('add', pages, lists).map(placeOf)).toEqual(['Domains › White list', 'Domains › Black list'])
  })

  it('offers commands, and entries of lists behind everything else', () => {
    const entries = [{ page: 'keywords', control: 'List1', frame: 'Body', text: 'keyword-x.example' }]
    const commands = [{ name: 'theme-dark', text: 'Appearance: Dark', words: 'theme Farben' }]
    const hits = search('keyword', pages, captions, { entries, commands })
    expect(hits.map(hit => hit.kind)).toEqual(['page', 'control', 'control', 'entry'])
    expect(placeOf(hits[3]!)).toBe('Keywords › Body')
    expect(search('farben', pages, captions, { commands })[0]).toMatchObject({ kind: 'command', control: 'theme-dark' })
  })

  it('hands what was typed to the page that looks things up, where there is one', () => {
    const answers = { name: 'lookup', section: 'Logs', group: 'Traffic', title: 'Look up' }
    const ask = (query: string, all = [answers]) => questionHit(query, all, what => `Look up ${what}`)
    expect(ask(' bob@x.example ')).toMatchObject({ kind: 'question', page: 'lookup', control: 'bob@x.example', text: 'Look up bob@x.example' })
    expect(ask('  ')).toBeNull()
    expect(ask('bob', [])).toBeNull()
  })

  it('lists all pages without words', () => {
    expect(found('  ')).toEqual(['general/', 'keywords/', 'strasse/'])
  })
})

describe('the languages', () => {
  const leaves = (value: unknown, path = ''): string[] =>
    typeof value === 'object' && value !== null
      ? Object.entries(value).flatMap(([key, inner]) => leaves(inner, `${path}.${key}`))
      : typeof value === 'string'
        ? [`${path}=${value}`]
        : []

  it('leave nothing untranslated', () => {
    const english = new Set(leaves(en))
    // Words that are the same in both languages.
    const same = new Set(['.ok=OK', '.verdicts.neutral=Neutral'])
    expect(leaves(de).filter(text => english.has(text) && !same.has(text))).toEqual([])
  })
})
