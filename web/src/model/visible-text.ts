const longestShown = 2000

// What shows nothing of its own: by the properties of Unicode, the same characters as in the table of
// src/core/text/printable.cpp, which guards terminals and logs. A test compares the two.
const unseen = String.raw`[\p{Cc}\p{Cf}\p{Cs}\p{Zl}\p{Zp}\p{Default_Ignorable_Code_Point}\p{Noncharacter_Code_Point}]`

// Joiners and selectors have their place in emoji and in scripts whose letters join. They stay there, and only there.
const joining =
  '[' +
  'Arab Beng Deva Gujr Guru Khmr Knda Mlym Mong Mymr Nkoo Orya Sinh Syrc Taml Telu Tibt'
    .split(' ')
    .map(script => `\\p{sc=${script}}`)
    .join('') +
  ']'
const inEmoji = String.raw`(?<=[\p{Emoji}\ufe0f])(?:\ufe0f|\u200d(?=\p{Extended_Pictographic}))`
const invisible = new RegExp(`(${inEmoji}|(?<=${joining})[\\u200c\\u200d](?=${joining}))|${unseen}`, 'gu')

const named: Record<string, string> = {
  '\u2028': '\u2424',
  '\u2029': '\u2424',
  '\u0085': '\u2424',
  '\u007f': '\u2421',
}

/** Makes controls and characters that are not seen, or turn the direction of text, visible: rows show foreign text,
 *  which must neither break the layout nor pretend to be something else. */
export function visibleText(text: string, limit = longestShown): string {
  const shown = text.length > limit ? cut(text, limit) + '…' : text
  return shown.replace(invisible, (character, inPlace?: string) => {
    if (inPlace) return inPlace
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
