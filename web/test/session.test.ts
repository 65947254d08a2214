import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest'
import { ActivityModel } from '../src/model/activity'
import { Drafts } from '../src/model/drafts'
import { Session } from '../src/model/session'
import type { Connection } from '../src/wire/connection'
import type { Control, FormMessage, Hello, SequencedMessage } from '../src/wire/protocol'

const usable = { enabled: true, visible: true }

const hello: Hello = {
  type: 'hello',
  account: 'admin',
  tab: 'a tab',
  language: 'english',
  product: 'P',
  version: '1',
  pages: [{ name: 'page', section: 'G', group: 'G', title: 'Page' }],
  open: 'page',
}

function formOf(controls: Record<string, Control>): FormMessage {
  return { type: 'form', form: 'page', caption: 'Page', dialog: false, modal: false, layout: { column: [] }, controls }
}

const controls = (): Record<string, Control> => ({
  text: { kind: 'TextField', text: 'old', ...usable },
  box: { kind: 'CheckBox', caption: 'B', value: 0, ...usable },
  one: { kind: 'OptionButton', caption: '1', value: 1, group: 'g', ...usable },
  two: { kind: 'OptionButton', caption: '2', value: 0, group: 'g', ...usable },
  list: { kind: 'ListBox', items: { length: 100, revision: 1 }, index: -1, ...usable },
  go: { kind: 'Button', caption: 'Go', ...usable },
})

function start(drafts?: Drafts) {
  const line = { up: true, seq: 0, sent: [] as (SequencedMessage & { seq: number })[] }
  const connection = {
    sendSequenced: (message: SequencedMessage) => {
      if (!line.up) return 0
      line.sent.push({ ...message, seq: ++line.seq })
      return line.seq
    },
    send: () => line.up,
  } as unknown as Connection
  const session = new Session(connection, new ActivityModel(), drafts)
  session.opened()
  session.receive(hello)
  session.receive(formOf(controls()))
  const control = (name: string) => session.page.value!.controls.get(name)!
  const change = (ack: number, changed: Record<string, Partial<Control>>) =>
    session.receive({ type: 'change', form: 'page', ack, controls: changed })
  return { line, session, control, change }
}

const told = (line: { sent: object[] }) =>
  line.sent.map(message => {
    const { control, event, text, index } = message as Record<string, unknown>
    return [control, event, text ?? index].filter(part => part !== undefined).join(' ')
  })

beforeEach(() => void vi.useFakeTimers())
afterEach(() => void vi.useRealTimers())

describe('typing', () => {
  it('is sent once after a pause, and before any other event', () => {
    const { line, control } = start()
    for (const text of ['a', 'ab', 'abc']) control('text').type(text)
    expect(line.sent).toEqual([])
    vi.advanceTimersByTime(250)
    control('text').type('abcd')
    control('go').click()
    vi.advanceTimersByTime(1000)
    expect(told(line)).toEqual(['text text abc', 'text text abcd', 'go click'])
  })

  it('is not overwritten by what the server said before it knew of it', () => {
    const { control, change } = start()
    control('text').type('mine')
    change(0, { text: { text: 'while typing' } })
    expect(control('text').text.value).toBe('mine')
    vi.advanceTimersByTime(250)
    change(0, { text: { text: 'before it arrived' } })
    expect(control('text').text.value).toBe('mine')
    change(1, { text: { text: 'MINE' } })
    expect(control('text').text.value).toBe('MINE')
  })

  it('yields to what a later click made of it', () => {
    const { session, control, change } = start()
    control('text').type('mine')
    control('go').click()
    session.receive({ type: 'done', seq: 1 })
    change(2, { text: { text: '' } })
    session.receive({ type: 'done', seq: 2 })
    expect(control('text').text.value).toBe('')
    // A timer of the page changes it afterwards, acknowledging nothing new.
    change(2, { text: { text: 'ticked' } })
    expect(control('text').text.value).toBe('ticked')
  })

  it('goes back to the server’s text when it was refused', () => {
    const { session, control } = start()
    control('text').type('mine')
    vi.advanceTimersByTime(250)
    session.receive({ type: 'error', seq: 1, code: 'refused', text: '' })
    expect(control('text').text.value).toBe('old')
  })

  it.each([false, true])('outlives a reconnection (sent before: %s)', sent => {
    const { line, session, control } = start()
    control('text').type('mine')
    if (sent) vi.advanceTimersByTime(250)
    line.up = false
    vi.advanceTimersByTime(1000)
    Object.assign(line, { up: true, seq: 0, sent: [] })
    session.opened()
    session.receive(hello)
    session.receive(formOf(controls()))
    expect(control('text').text.value).toBe('mine')
    vi.advanceTimersByTime(1000)
    expect(told(line)).toEqual(['text text mine'])
  })

  it('that had been acknowledged gives way to the server’s text after a reconnection', () => {
    const { session, control } = start()
    control('text').type('mine')
    vi.advanceTimersByTime(250)
    session.receive({ type: 'done', seq: 1 })
    session.opened()
    session.receive(hello)
    session.receive(formOf({ ...controls(), text: { kind: 'TextField', text: 'theirs', ...usable } }))
    expect(control('text').text.value).toBe('theirs')
  })
})

describe('clicks', () => {
  it('show at once and follow the server in the end', () => {
    const { session, control, change } = start()
    const value = (name: string) => control(name).shown.value.value
    control('box').click()
    control('box').click()
    control('box').click()
    expect(value('box')).toBe(1)
    change(1, { box: { value: 1 } })
    session.receive({ type: 'done', seq: 1 })
    change(2, { box: { value: 0 } })
    expect(value('box')).toBe(1)
    session.receive({ type: 'done', seq: 2 })
    session.receive({ type: 'done', seq: 3 })
    expect(value('box')).toBe(0)
  })

  it('on an option button move the choice, and back when refused', () => {
    const { session, control } = start()
    const values = () => [control('one').shown.value.value, control('two').shown.value.value]
    control('two').click()
    expect(values()).toEqual([0, 1])
    session.receive({ type: 'error', seq: 1, code: 'refused', text: '' })
    expect(values()).toEqual([1, 0])
  })

  it('wait until they are done', () => {
    const { session, control } = start()
    control('go').click()
    expect(control('go').waiting.value).toBe(1)
    session.receive({ type: 'done', seq: 1 })
    expect(control('go').waiting.value).toBe(0)
  })

  it('do nothing without a connection, and say so', () => {
    const { line, session, control } = start()
    const refusal = vi.fn()
    session.onRefusal = refusal
    line.up = false
    expect(control('box').click()).toBe(false)
    expect(control('box').shown.value.value).toBe(0)
    expect(refusal).toHaveBeenCalledOnce()
  })
})

describe('choosing', () => {
  it('leaves out what was passed over while an earlier choice was handled', () => {
    const { line, session, control } = start()
    for (const index of [0, 1, 2, 3]) control('list').choose(index)
    expect(control('list').shown.value.index).toBe(3)
    session.receive({ type: 'done', seq: 1 })
    session.receive({ type: 'done', seq: 2 })
    vi.advanceTimersByTime(1000)
    expect(told(line)).toEqual(['list choose 0', 'list choose 3'])
  })

  it('is complete before another event', () => {
    const { line, control } = start()
    control('list').choose(0)
    control('list').choose(7)
    control('go').click()
    expect(told(line)).toEqual(['list choose 0', 'list choose 7', 'go click'])
  })
})

describe('forms', () => {
  it('disable what stands in a disabled frame, however deep', () => {
    const { session, change } = start()
    const layout = { frame: 'outer', content: { column: [{ frame: 'inner', content: { control: 'go' } }, { control: 'text' }] } }
    const frame = { kind: 'Frame' as const, ...usable }
    session.open('framed')
    session.receive({ ...formOf({ ...controls(), outer: frame, inner: frame }), layout })
    const enabled = (name: string) => session.page.value!.controls.get(name)!.shown.value.enabled
    change(1, { inner: { enabled: false } })
    expect([enabled('go'), enabled('text'), enabled('box')]).toEqual([false, true, true])
    change(1, { inner: { enabled: true }, outer: { enabled: false } })
    expect([enabled('go'), enabled('text'), enabled('box')]).toEqual([false, false, true])
  })

  it('stay on view until the next page has come', () => {
    const { session } = start()
    session.open('other')
    session.receive({ type: 'closed', form: 'page' })
    expect(session.page.value?.name).toBe('page')
    expect(session.opening.value).toBe('other')
    session.receive({ ...formOf({}), form: 'other' })
    expect([session.page.value?.name, session.opening.value]).toEqual(['other', null])
  })

  it('that a new connection no longer tells are gone', () => {
    const { session } = start()
    session.receive({ ...formOf({}), form: 'dialog', dialog: true, modal: true })
    expect(session.blocked.value).toBe(true)
    session.opened()
    session.receive(hello)
    session.receive(formOf(controls()))
    vi.advanceTimersByTime(5000)
    expect([session.page.value?.name, session.dialogs.value.length, session.blocked.value]).toEqual(['page', 0, false])
  })

  it('keep their models over a reconnection, so that focus and scroll positions stay', () => {
    const { session } = start()
    const before = session.page.value
    session.opened()
    session.receive(hello)
    session.receive(formOf(controls()))
    expect(session.page.value).toBe(before)
  })
})

describe('unsaved texts', () => {
  function typing() {
    const kept = new Map<string, string>()
    const storage = {
      get length() {
        return kept.size
      },
      key: (index: number) => [...kept.keys()][index] ?? null,
      getItem: (name: string) => kept.get(name) ?? null,
      setItem: (name: string, value: string) => void kept.set(name, value),
      removeItem: (name: string) => void kept.delete(name),
    }
    return { ...start(new Drafts(storage)), storage }
  }

  it('are kept until an act has used them, and offered again when the page put something else in their place', () => {
    const { session, control, change } = typing()
    control('text').type('mine')
    expect(session.unsaved).toBe(true)
    vi.advanceTimersByTime(250)
    change(1, { text: { unsaved: true } })
    session.receive({ type: 'done', seq: 1 })
    expect([session.unsaved, session.drafts.count]).toEqual([true, 1])
    change(2, { text: { unsaved: false, setAside: true, text: 'chosen' } })
    expect([session.unsaved, session.drafts.count, control('text').draft.value?.text]).toEqual([false, 1, 'mine'])
    control('text').restoreDraft()
    expect(control('text').text.value).toBe('mine')
    vi.advanceTimersByTime(250)
    change(3, { text: { unsaved: true } })
    change(4, { text: { unsaved: false, setAside: false } })
    expect([session.unsaved, session.drafts.count, control('text').draft.value]).toEqual([false, 0, null])
  })

  it('are no longer kept when they are saved after the page was loaded anew', () => {
    const { session, control, storage } = typing()
    control('text').type('mine')
    vi.advanceTimersByTime(250)
    session.drafts.release()
    const again = start(new Drafts(storage))
    again.session.receive(formOf({ ...controls(), text: { kind: 'TextField', text: 'mine', unsaved: true, ...usable } }))
    expect([again.session.unsaved, again.control('text').draft.value]).toEqual([true, null])
    again.change(1, { text: { unsaved: false } })
    expect(again.session.drafts.count).toBe(0)
  })

  it('of a form that is closed are kept if nothing has used them', () => {
    const { session, control } = typing()
    control('text').type('mine')
    vi.advanceTimersByTime(250)
    session.receive({ type: 'closed', form: 'page', unsaved: ['text'] })
    expect(session.drafts.count).toBe(1)
    session.receive({ ...formOf(controls()), form: 'dialog', dialog: true })
    const field = session.dialogs.value[0]!.controls.get('text')!
    field.type('sent')
    vi.advanceTimersByTime(250)
    expect(session.drafts.count).toBe(2)
    session.receive({ type: 'closed', form: 'dialog' })
    expect(session.drafts.count).toBe(1)
  })

  it('are offered in the console that takes the place of a lost one, passwords never', () => {
    const { session, control, storage } = typing()
    const secret = { kind: 'TextField' as const, text: '', secret: true, ...usable }
    session.receive(formOf({ ...controls(), secret }))
    control('text').type('mine')
    control('secret').type('hidden')
    vi.advanceTimersByTime(250)
    let renewed = 0
    session.onRenewed = () => ++renewed
    session.opened()
    session.receive({ ...hello, tab: 'another tab' })
    expect([renewed, session.page.value]).toEqual([1, null])
    session.receive(formOf({ ...controls(), secret }))
    expect([control('text').text.value, control('text').draft.value?.text]).toEqual(['old', 'mine'])
    expect([control('secret').draft.value, [...Array(storage.length).keys()].some(i => storage.getItem(storage.key(i)!)!.includes('hidden'))]).toEqual([null, false])
    control('text').discardDraft()
    expect(session.drafts.count).toBe(0)
  })

  it('keep the page where the person did not want to leave it', () => {
    const { session } = start()
    session.open('other')
    expect(session.opening.value).toBe('other')
    session.receive({ type: 'done', seq: 1 })
    expect([session.opening.value, session.page.value?.name]).toEqual([null, 'page'])
  })
})
