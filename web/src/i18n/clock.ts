/** The reader's own form of a language: people in Vienna and in London write times as they are used to. */
export const clockLanguage = (language: string): string =>
  (typeof navigator === 'undefined' ? undefined : navigator.languages?.find(known => known.split('-')[0] === language)) ?? language

export const briefForm: Intl.DateTimeFormatOptions = { month: '2-digit', day: '2-digit', hour: '2-digit', minute: '2-digit' }

/** Every time is as wide as the next, so that a column of them can be read at a glance. */
export const clockForm: Intl.DateTimeFormatOptions = {
  year: 'numeric',
  month: '2-digit',
  day: '2-digit',
  hour: '2-digit',
  minute: '2-digit',
  second: '2-digit',
}
