import type { ActivityMessage, Said } from '../wire/protocol'
import { summarise, type Summary } from './toast-text'

/** What people are told of an act: its own sentences, or else a summary of its steps; nothing where nobody asked for it. */
export function noticesOf(message: ActivityMessage, steps: number): { said: readonly Said[]; summary: Summary | null } {
  const said = message.said ?? []
  if (said.length > 0) return { said, summary: null }
  const entries = message.entries.filter(entry => !entry.expected && !(entry.routine && entry.ok))
  // What a page writes when it is shown is in the record.
  if (entries.length === 0 || (message.showing && message.failed === 0)) return { said, summary: null }
  return { said, summary: summarise(entries, steps - (message.entries.length - entries.length), message.failed) }
}
