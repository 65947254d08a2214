import type { ActivityEntry } from '../wire/protocol'

/** A step of an action, as far as people want to hear about it. */
export type Step =
  | { kind: 'set'; what: 'option' | 'registry'; name: string; value: string }
  | { kind: 'delete'; name: string }
  | { kind: 'statement' | 'component' | 'program' | 'file' | 'other'; text: string }

export interface Summary {
  failed: boolean
  /** The failing steps of all the steps that there were. */
  failures: number
  total: number
  /** What is worth telling in full; the others are counted. */
  lead: Step | null
  others: { kind: Step['kind']; count: number }[]
  error: string
}

const lastName = (path: string): string => path.slice(path.lastIndexOf('\\') + 1)

function readStep(entry: ActivityEntry): Step {
  if (entry.kind === 'option') {
    const match = /^set_(?:option|string) ([^=]*)=(.*)$/s.exec(entry.text)
    if (match) return { kind: 'set', what: 'option', name: match[1] ?? '', value: match[2] ?? '' }
  }
  if (entry.kind === 'registry') {
    if (entry.text.startsWith('delete ')) return { kind: 'delete', name: lastName(entry.text.slice(7)) }
    const equals = entry.text.indexOf('=')
    if (equals > 0) {
      const name = lastName(entry.text.slice(0, equals))
      return { kind: 'set', what: 'registry', name, value: entry.text.slice(equals + 1) }
    }
  }
  if (entry.kind === 'sql') return { kind: 'statement', text: entry.text }
  if (entry.kind === 'component' || entry.kind === 'program' || entry.kind === 'file') {
    return { kind: entry.kind, text: entry.text }
  }
  return { kind: 'other', text: entry.text }
}

const weight = (step: Step): number => {
  if (step.kind === 'set') return step.what === 'option' ? 6 : 1
  return { file: 5, program: 4, component: 3, statement: 2, delete: 1, other: 0 }[step.kind]
}

/** Sums up what one action did: the weightiest step in full and the others in numbers. `total` and `failures` count all of its
 *  steps, of which the entries may be only the newest. */
export function summarise(entries: readonly ActivityEntry[], total: number, failures: number): Summary {
  const failed = entries.filter(entry => !entry.ok && !entry.expected)
  if (failures > 0) {
    const worst = failed[0]
    const lead = worst ? readStep(worst) : null
    return { failed: true, failures, total, lead, others: [], error: worst?.error ?? '' }
  }
  const steps = entries.filter(entry => !entry.expected).map(readStep)
  let lead: Step | null = null
  for (const step of steps) if (!lead || weight(step) > weight(lead)) lead = step
  const counts = new Map<Step['kind'], number>()
  for (const step of steps) {
    if (step !== lead) counts.set(step.kind, (counts.get(step.kind) ?? 0) + 1)
  }
  if (lead?.kind === 'statement' && steps.every(step => step.kind === 'statement')) {
    // A run of statements says nothing by its first one.
    return { failed: false, failures: 0, total, lead: null, others: [{ kind: 'statement', count: total }], error: '' }
  }
  const others = [...counts].map(([kind, count]) => ({ kind, count }))
  const missing = total - entries.length
  if (missing > 0) {
    const most = others.sort((a, b) => b.count - a.count)[0]
    if (most) most.count += missing
    else others.push({ kind: 'other', count: missing })
  }
  return { failed: false, failures: 0, total, lead, others, error: '' }
}
