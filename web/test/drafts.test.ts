import { beforeEach, describe, expect, it } from 'vitest'
import { Drafts, type DraftStorage } from '../src/model/drafts'
import { TabIdentity } from '../src/wire/tab'

class FakeStorage implements DraftStorage {
  readonly items = new Map<string, string>()
  get length(): number {
    return this.items.size
  }
  key(index: number): string | null {
    return [...this.items.keys()][index] ?? null
  }
  getItem(name: string): string | null {
    return this.items.get(name) ?? null
  }
  setItem(name: string, value: string): void {
    this.items.set(name, value)
  }
  removeItem(name: string): void {
    this.items.delete(name)
  }
  copy(): FakeStorage {
    const copy = new FakeStorage()
    for (const [name, value] of this.items) copy.items.set(name, value)
    return copy
  }
}

const place = { form: 'ScriptEngine', field: 'scriptsource', of: 'check_sender' }
const day = 24 * 60 * 60 * 1000
let storage: FakeStorage
let time = 0

function draftsOf(account: string, tab: string): Drafts {
  const drafts = new Drafts(storage, () => time)
  drafts.belongTo(account, tab)
  return drafts
}
const found = (drafts: Drafts, shown = '') => drafts.find(place.form, place.field, shown)?.text

beforeEach(() => {
  storage = new FakeStorage()
  time = 1_000 * day
})

describe('drafts', () => {
  it('outlive their tab, for the same account alone', () => {
    const before = draftsOf('anna', 'one')
    before.keep(place, 'first')
    before.keep(place, 'typed')
    before.release()
    expect(found(draftsOf('anna', 'two'))).toBe('typed')
    expect(found(draftsOf('anna', 'two'), 'typed')).toBeUndefined()
    expect(found(draftsOf('bert', 'two'))).toBeUndefined()
    expect(draftsOf('ann', 'two').count).toBe(0)
    draftsOf('bert', 'two').clear()
    expect(found(draftsOf('anna', 'two'))).toBe('typed')
    draftsOf('anna', 'two').clear()
    expect(found(draftsOf('anna', 'two'))).toBeUndefined()
    draftsOf('', 'two').keep(place, 'of nobody')
    expect(storage.items.size).toBe(0)
  })

  it('of another open tab are neither offered nor overwritten', () => {
    const one = draftsOf('anna', 'one')
    one.keep(place, 'one')
    const two = draftsOf('anna', 'two')
    two.keep(place, 'two')
    expect([found(one), found(two), one.count]).toEqual(['one', 'two', 2])
    // The first one's browser has crashed, and nobody said good-bye.
    time += 120_000
    two.beat()
    two.drop(place)
    expect(found(two)).toBe('one')
    two.discard(two.find(place.form, place.field, '')!)
    expect(two.count).toBe(0)
  })

  it('have limits of size and age', () => {
    const drafts = draftsOf('anna', 'one')
    drafts.keep(place, 'x'.repeat(300_000))
    expect(drafts.count).toBe(0)
    for (let i = 0; i < 12; ++i) {
      ++time
      drafts.keep({ ...place, of: String(i) }, String(i).repeat(100_000))
    }
    const bytes = [...storage.items.values()].reduce((sum, text) => sum + text.length, 0)
    expect(bytes).toBeLessThan(2.2 * 1024 * 1024)
    expect(found(drafts)).toBe('11'.repeat(100_000))
    time += 8 * day
    expect(draftsOf('anna', 'one').count).toBe(0)
  })

  it('are nothing but missing where the browser keeps nothing', () => {
    const full = new FakeStorage()
    full.setItem = () => {
      throw new Error('quota')
    }
    for (const kept of [null, full]) {
      const drafts = new Drafts(kept)
      drafts.belongTo('anna', 'one')
      drafts.keep(place, 'typed')
      expect([drafts.find(place.form, place.field, ''), drafts.count]).toEqual([null, 0])
    }
  })
})

describe('a tab', () => {
  it('comes back to its console after a reload, and a copy of it says that it may be one', () => {
    const kept = new FakeStorage()
    const first = new TabIdentity(kept)
    expect(first.path).toBe('/ws')
    expect(first.greeted('id')).toBe(false)
    expect(first.path).toBe('/ws?tab=id')

    const copy = new TabIdentity(kept.copy())
    expect(copy.path).toBe('/ws?tab=id&copy=1')
    expect(copy.greeted('another')).toBe(true)
    expect(copy.path).toBe('/ws?tab=another')

    first.release()
    const reloaded = new TabIdentity(kept)
    expect(reloaded.path).toBe('/ws?tab=id')
    expect(reloaded.greeted('id')).toBe(false)
    reloaded.forget()
    expect([reloaded.path, new TabIdentity(kept).path]).toEqual(['/ws', '/ws'])
  })
})
