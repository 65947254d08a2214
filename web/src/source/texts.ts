/** How the lines of a text end. Scripts are Windows' files: a text that does not tell gets its line ends. */
export function lineBreakOf(text: string): string {
  return /\r\n?|\n/.exec(text)?.[0] ?? '\r\n'
}

/** Where a place of one text lies in the text that follows it: what both begin and end with stays where it is. */
export function followPlace(before: string, after: string): (place: number) => number {
  const shorter = Math.min(before.length, after.length)
  let same = 0
  while (same < shorter && before[same] === after[same]) ++same
  let tail = 0
  while (tail < shorter - same && before.at(-1 - tail) === after.at(-1 - tail)) ++tail
  return place => {
    if (place <= same) return place
    return place >= before.length - tail ? place + after.length - before.length : same
  }
}
