import type { Caption, EntryHit, PageEntry } from '../wire/protocol'

export interface Command {
  name: string
  text: string
  /** Other words for it. */
  words: string
}

export interface Hit {
  kind: 'page' | 'control' | 'entry' | 'command' | 'question'
  page: string
  /** Empty for the page itself. */
  control: string
  title: string
  group: string
  /** The title around a control. */
  frame: string
  text: string
}

/** Words that people use for the same thing, in both languages; phrases count as one word. */
const synonyms: readonly (readonly string[])[] = [
  ['whitelist', 'white list', 'white lists', 'white-list', 'allow', 'allowed', 'allowlist', 'weisse liste', 'weissen liste', 'weisse listen', 'erlauben', 'zulassen', 'passieren'],
  ['blacklist', 'black list', 'black lists', 'black-list', 'block', 'blocked', 'blocklist', 'deny', 'reject', 'schwarze liste', 'schwarzen liste', 'schwarze listen', 'sperren', 'sperrliste', 'ablehnen'],
  ['exception', 'exceptions', 'exempt', 'ausnahme', 'ausnahmen'],
  ['ip number', 'ip address', 'ip-nummer', 'ip-adresse'],
  ['language', 'english', 'german', 'sprache', 'deutsch', 'englisch'],
]

const plain = (text: string): string =>
  text
    .normalize('NFD')
    .replace(/\p{M}/gu, '')
    .replaceAll('ß', 'ss')
    .toLowerCase()

/** The words of a query, each with those that mean the same. A phrase that has synonyms is one word. */
function meanings(query: string): string[][] {
  let rest = ` ${plain(query).trim().replace(/\s+/g, ' ')} `
  const found: string[][] = []
  for (const group of synonyms) {
    for (const phrase of group.filter(other => other.includes(' '))) {
      if (!rest.includes(` ${phrase} `)) continue
      rest = rest.replace(` ${phrase} `, ' ')
      found.push([...group])
    }
  }
  for (const word of rest.split(' ').filter(Boolean)) {
    found.push([word, ...(synonyms.find(group => group.includes(word))?.filter(other => other !== word) ?? [])])
  }
  return found
}

const pageBonus = 50

function rateWord(folded: string, word: string): number {
  const place = folded.indexOf(word)
  if (place < 0) return 0
  if (place === 0) return 30
  return /[^\p{L}\p{N}]/u.test(folded[place - 1] ?? '') ? 20 : 5
}

/** How well a text answers the words: 0 for not at all. What was typed counts more than what means the same. */
function rate(text: string, words: readonly string[][]): number {
  const folded = plain(text)
  let rating = 0
  for (const same of words) {
    const best = Math.max(...same.map((word, place) => rateWord(folded, word) - (place > 0 ? 2 : 0)))
    if (best <= 0) return 0
    rating += best
  }
  return rating + Math.max(0, 10 - folded.length / 20)
}

/** Pages, captions and commands that hold all the words, best first, and behind them the entries that were found. Without words, all
 *  pages. */
export function search(
  query: string,
  pages: readonly PageEntry[],
  captions: Record<string, Caption[]> | null,
  { entries = [], commands = [], limit = 60 }: { entries?: readonly EntryHit[]; commands?: readonly Command[]; limit?: number } = {},
): Hit[] {
  const words = meanings(query)
  const pageHit = (page: PageEntry): Hit => ({ kind: 'page', page: page.name, control: '', title: page.title, group: page.group, frame: '', text: page.title })
  if (words.length === 0) return pages.map(pageHit)
  const rated: { hit: Hit; rating: number }[] = []
  for (const command of commands) {
    const rating = rate(`${command.text} ${command.words}`, words)
    const hit: Hit = { kind: 'command', page: '', control: command.name, title: '', group: '', frame: '', text: command.text }
    if (rating > 0) rated.push({ hit, rating: rating + pageBonus })
  }
  for (const page of pages) {
    const onTitle = rate(page.title, words) || rate(`${page.title} ${page.group} ${page.name}`, words) / 2
    if (onTitle > 0) rated.push({ hit: pageHit(page), rating: onTitle + pageBonus })
    // A control is found by its caption, its tool tip and the title around it; it is listed once.
    const best = new Map<string, { hit: Hit; rating: number }>()
    for (const { control, text, frame = '' } of captions?.[page.name] ?? []) {
      const rating = rate(text, words) || rate(`${text} ${frame}`, words) / 2 || rate(`${text} ${frame} ${page.title}`, words) / 3
      if (rating > (best.get(control)?.rating ?? 0)) {
        best.set(control, { hit: { kind: 'control', page: page.name, control, title: page.title, group: page.group, frame, text }, rating })
      }
    }
    rated.push(...best.values())
  }
  const found = rated
    .sort((a, b) => b.rating - a.rating)
    .slice(0, limit)
    .map(entry => entry.hit)
  const titles = new Map(pages.map(page => [page.name, page]))
  for (const { page, control, frame, text } of entries) {
    const { title = '', group = '' } = titles.get(page) ?? {}
    found.push({ kind: 'entry', page, control, title, group, frame, text })
  }
  return found
}

/** What was typed, as a question to the page that answers such questions. Null where there is no such page, or nothing to ask. */
export function questionHit(query: string, pages: readonly PageEntry[], text: (what: string) => string): Hit | null {
  const what = query.trim()
  const page = pages.find(one => one.name === 'lookup')
  if (!page || what === '') return null
  return { kind: 'question', page: page.name, control: what, title: page.title, group: page.group, frame: '', text: text(what) }
}

/** Where a hit is, for people: "Domains > Black list". */
export const placeOf = (hit: Hit): string =>
  hit.kind === 'page' ? hit.group : [hit.title, hit.frame].filter(part => part !== '').join(' › ')
