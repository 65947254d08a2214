const longestShown = 2000

const invisible = /[\u0000-\u001f\u007f-\u009f\u061c\u200b\u200e\u200f\u2028\u2029\u202a-\u202e\u2066-\u2069\ufeff]/g

const named: Record<string, string> = {
  '\u2028': '\u2424',
  '\u2029': '\u2424',
  '\u0085': '\u2424',
  '\u007f': '\u2421',
}

/** Makes control characters and characters that turn the direction of text visible: rows show foreign text, which
 *  must neither break the layout nor pretend to be something else. */
export function visibleText(text: string, limit = longestShown): string {
  const shown = text.length > limit ? cut(text, limit) + '…' : text
  return shown.replace(invisible, character => {
    const name = named[character]
    if (name) return name
    const code = character.charCodeAt(0)
    return code < 0x20 ? String.fromCharCode(0x2400 + code) : '\ufffd'
  })
}

function cut(text: string, limit: number): string {
  const code = text.charCodeAt(limit - 1)
  return text.slice(0, code >= 0xd800 && code <= 0xdbff ? limit - 1 : limit)
}
