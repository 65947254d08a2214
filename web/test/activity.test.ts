import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest'
import { ActivityModel } from '../src/model/activity'
import { Toasts } from '../src/model/toasts'
import type { ActivityEntry } from '../src/wire/protocol'

const entryAt = (position: number): ActivityEntry => ({
  time: '10:00:00',
  kind: 'sql',
  text: `statement ${position}`,
  ok: position % 700 !== 3,
  error: '',
})

/** A record of some length, and a model that asks it. */
function start(length: number) {
  /** Where the record begins; older entries are dropped. */
  const kept = { from: 0 }
  const record = Array.from({ length }, (_, position) => entryAt(position))
  const asked: number[] = []
  const model = new ActivityModel()
  model.send = message => {
    if (message.type !== 'record') return false
    asked.push(message.start)
    queueMicrotask(() =>
      model.accept({
        type: 'record',
        request: message.request,
        start: Math.max(kept.from, message.start),
        total: record.length,
        entries: record.slice(Math.max(kept.from, message.start)).slice(0, message.count),
      }),
    )
    return true
  }
  if (length > 0) model.reconnected()
  const act = (count: number): void => {
    const first = record.length
    for (let n = 0; n < count; ++n) record.push(entryAt(first + n))
    const shown = Math.max(first, record.length - 50)
    model.took({
      type: 'activity',
      first: shown,
      total: record.length,
      failed: record.slice(first).filter(entry => !entry.ok).length,
      entries: record.slice(shown),
    })
  }
  return { model, asked, kept, act }
}

const settle = (): Promise<void> => new Promise(resolve => setTimeout(resolve, 5))

describe('the activity record', () => {
  it('finds every failure of a long record, the newest first, and those that are added', async () => {
    const { model, act } = start(3000)
    model.toggle(true)
    await settle()
    model.showFailures(true)
    await settle()
    expect(model.failures.value.map(failure => failure.position)).toEqual([2803, 2103, 1403, 703, 3])
    act(1000)
    await settle()
    expect(model.failures.value.map(failure => failure.position)).toEqual([3503, 2803, 2103, 1403, 703, 3])
    expect(model.scanning.value).toBe(false)
  })

  it('fetches what an action left out, and nothing twice', async () => {
    const { model, asked, act } = start(0)
    act(120)
    expect(model.entry(119)?.text).toBe('statement 119')
    expect(model.entry(10)).toBeUndefined()
    model.show(0, 119)
    model.show(0, 119)
    await settle()
    expect(model.entry(10)?.text).toBe('statement 10')
    model.show(0, 119)
    expect(asked).toEqual([0])
  })

  it('counts the failures that nobody has seen', () => {
    const { model, act } = start(0)
    act(10)
    act(800)
    expect(model.unseenFailures.value).toBe(2)
    model.toggle(true)
    expect(model.unseenFailures.value).toBe(0)
  })

  it('takes no step of before for one of the first action on a new connection', async () => {
    const { model, act } = start(1000)
    const steps: number[] = []
    model.onAction = (_message, count) => steps.push(count)
    act(5)
    act(3)
    model.reconnected()
    await settle()
    act(120)
    expect(steps).toEqual([5, 3, 120])
  })

  it('does without the entries that the record has dropped', async () => {
    const { model, asked, kept } = start(3000)
    await settle()
    kept.from = 1700
    model.toggle(true)
    model.showFailures(true)
    await settle()
    expect(model.failures.value.map(failure => failure.position)).toEqual([2803, 2103])
    const before = asked.length
    model.show(1600, 1750)
    await settle()
    expect([model.oldest.value, model.entry(1699), model.entry(1700)?.text]).toEqual([1700, undefined, 'statement 1700'])
    model.show(1600, 1750)
    expect(asked.length - before).toBeLessThanOrEqual(1)
  })

  it('tells how many steps an action had, beyond those that were sent', () => {
    const { model, act } = start(0)
    const totals: number[] = []
    model.onAction = (_, total) => totals.push(total)
    act(2)
    act(120)
    expect(totals).toEqual([2, 120])
  })
})

describe('toasts', () => {
  beforeEach(() => void vi.useFakeTimers())
  afterEach(() => void vi.useRealTimers())

  const texts = (toasts: Toasts) => toasts.shown.value.map(toast => `${toast.text} ×${toast.count}`)

  it('count repeats, follow a topic, and show the newest few', () => {
    const toasts = new Toasts()
    toasts.add('saved')
    toasts.add('saved')
    toasts.add('mx is 1', { topic: 'mx' })
    toasts.add('mx is 0', { topic: 'mx' })
    expect(texts(toasts)).toEqual(['saved ×2', 'mx is 0 ×1'])
    toasts.add('a')
    toasts.add('b')
    expect(texts(toasts)).toEqual(['mx is 0 ×1', 'a ×1', 'b ×1'])
  })

  it('go by themselves, failures later, and not while they are read', () => {
    const toasts = new Toasts()
    toasts.add('done')
    toasts.add('failed', { failed: true })
    vi.advanceTimersByTime(6000)
    expect(texts(toasts)).toEqual(['failed ×1'])
    toasts.hold(true)
    toasts.add('while reading')
    vi.advanceTimersByTime(60_000)
    expect(texts(toasts)).toEqual(['failed ×1', 'while reading ×1'])
    toasts.hold(false)
    vi.advanceTimersByTime(20_000)
    expect(texts(toasts)).toEqual([])
  })
})
