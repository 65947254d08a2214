/** The reader's own form of a language: people in Vienna and in London write times as they are used to. */
export const clockLanguage = (language: string): string =>
  (typeof navigator === 'undefined' ? undefined : navigator.languages?.find(known => known.split('-')[0] === language)) ?? language
