import type { PageEntry } from '../wire/protocol'

export interface Hit {
  page: string
  /** Empty for the page itself. */
  control: string
  title: string
  group: string
  text: string
}

const plain = (text: string): string =>
  text
    .normalize('NFD')
    .replace(/\p{M}/gu, '')
    .replaceAll('ß', 'ss')
    .toLowerCase()

const pageBonus = 50

/** How well a text answers the words: 0 for not at all. */
function rate(text: string, words: readonly string[]): number {
  const folded = plain(text)
  let rating = 0
  for (const word of words) {
    const place = folded.indexOf(word)
    if (place < 0) return 0
    if (place === 0) rating += 30
    else if (/[^\p{L}\p{N}]/u.test(folded[place - 1] ?? '')) rating += 20
    else rating += 5
  }
  return rating + Math.max(0, 10 - folded.length / 20)
}

/** Pages and captions that hold all the words, best first. Without words, all pages. */
export function search(
  query: string,
  pages: readonly PageEntry[],
  captions: Record<string, { control: string; text: string }[]> | null,
  limit = 60,
): Hit[] {
  const words = plain(query).split(/\s+/).filter(Boolean)
  const toHit = (page: PageEntry, control: string, text: string): Hit => ({
    page: page.name,
    control,
    title: page.title,
    group: page.group,
    text,
  })
  if (words.length === 0) return pages.map(page => toHit(page, '', page.title))
  const rated: { hit: Hit; rating: number }[] = []
  for (const page of pages) {
    const onTitle = rate(page.title, words) || rate(`${page.title} ${page.group} ${page.name}`, words) / 2
    if (onTitle > 0) rated.push({ hit: toHit(page, '', page.title), rating: onTitle + pageBonus })
    // A control is found by its caption and by its tool tip; it is listed once.
    const best = new Map<string, { hit: Hit; rating: number }>()
    for (const caption of captions?.[page.name] ?? []) {
      const rating = rate(caption.text, words) || rate(`${caption.text} ${page.title}`, words) / 3
      if (rating > (best.get(caption.control)?.rating ?? 0)) {
        best.set(caption.control, { hit: toHit(page, caption.control, caption.text), rating })
      }
    }
    rated.push(...best.values())
  }
  return rated
    .sort((a, b) => b.rating - a.rating)
    .slice(0, limit)
    .map(entry => entry.hit)
}
