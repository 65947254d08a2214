/** What the address bar names: a page, and the query that fills it. */
export interface Address {
  page: string
  query: string
}

export const addressOf = (page: string, query = ''): string =>
  `#/${encodeURIComponent(page)}${query === '' ? '' : `/${encodeURIComponent(query)}`}`

const decoded = (text: string): string => {
  try {
    return decodeURIComponent(text)
  } catch {
    // Somebody has typed it; a percent sign stands for itself then.
    return text
  }
}

export function parseAddress(hash: string): Address {
  const text = hash.replace(/^#\/?/, '')
  const slash = text.indexOf('/')
  if (slash < 0) return { page: decoded(text), query: '' }
  return { page: decoded(text.slice(0, slash)), query: decoded(text.slice(slash + 1)) }
}
