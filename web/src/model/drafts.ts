/** A field of a form, and what the form shows in it: a script, for example. */
export interface DraftPlace {
  form: string
  field: string
  /** The name of what the field shows, if it may show several things. */
  of: string
}

export interface Draft extends DraftPlace {
  text: string
  /** When it was typed. */
  at: number
  key: string
}

/** What localStorage offers, as far as it is needed. */
export interface DraftStorage {
  readonly length: number
  key(index: number): string | null
  getItem(name: string): string | null
  setItem(name: string, value: string): void
  removeItem(name: string): void
}

interface Kept extends DraftPlace {
  text: string
  at: number
  tab: string
}

const prefix = 'draft '
const beatPrefix = 'draft-tab '
const longestAge = 7 * 24 * 60 * 60 * 1000
const longestText = 256 * 1024
const longestOfAll = 2 * 1024 * 1024
/** A browser lets a tab in the background run once a minute. */
const silentFor = 90_000

/** Typed and unsaved texts, kept on this device for the account that typed them. Another account sees nothing of them. Texts that are too
 *  long, or too old, are not kept. A tab that is open keeps its texts to itself; they are offered elsewhere once it is gone. */
export class Drafts {
  private readonly storage: DraftStorage | null
  private readonly now: () => number
  private account = ''
  private tab = ''

  constructor(storage: DraftStorage | null, now: () => number = Date.now) {
    this.storage = storage
    this.now = now
  }

  /** Whose texts, and from which tab. Without an account nothing is kept. */
  belongTo(account: string, tab: string): void {
    this.guard(() => {
      if (this.tab !== tab) this.storage?.removeItem(beatPrefix + this.tab)
      this.account = account
      this.tab = tab
      this.sweep()
    })
  }

  keep(place: DraftPlace, text: string): void {
    this.guard(() => {
      const key = this.keyOf(place)
      if (this.account === '' || text === '' || text.length > longestText) return this.storage?.removeItem(key)
      this.beat()
      this.storage?.setItem(key, JSON.stringify({ ...place, text, at: this.now(), tab: this.tab } satisfies Kept))
      this.sweep()
    })
  }

  drop(place: DraftPlace): void {
    this.guard(() => this.storage?.removeItem(this.keyOf(place)))
  }

  discard(draft: Draft): void {
    this.guard(() => this.storage?.removeItem(draft.key))
  }

  /** The newest text for the field that no other open tab is at work on; what stands there already is not offered. */
  find(form: string, field: string, shown: string): Draft | null {
    let newest: Draft | null = null
    for (const { key, kept } of this.all()) {
      if (kept.form !== form || kept.field !== field || kept.text === shown) continue
      if (kept.tab !== this.tab && this.isAlive(kept.tab)) continue
      if (!newest || kept.at > newest.at) newest = { ...kept, key }
    }
    return newest
  }

  /** How many texts of this account are kept. */
  get count(): number {
    return this.all().length
  }

  /** Takes all texts of this account off the device. */
  clear(): void {
    this.guard(() => {
      for (const { key } of this.all()) this.storage?.removeItem(key)
    })
  }

  /** This tab is open; to be told now and then. */
  beat(): void {
    this.guard(() => {
      if (this.tab !== '') this.storage?.setItem(beatPrefix + this.tab, String(this.now()))
    })
  }

  /** This tab is left: others may offer its texts. */
  release(): void {
    this.guard(() => this.storage?.removeItem(beatPrefix + this.tab))
  }

  private isAlive(tab: string): boolean {
    const beat = Number(this.storage?.getItem(beatPrefix + tab) ?? 0)
    return this.now() - beat < silentFor
  }

  private get ours(): string {
    return `${prefix}${encodeURIComponent(this.account)} `
  }

  private keyOf({ form, field, of }: DraftPlace): string {
    return this.ours + [form, field, of, this.tab].map(encodeURIComponent).join(' ')
  }

  private all(): { key: string; kept: Kept }[] {
    const found: { key: string; kept: Kept }[] = []
    this.guard(() => {
      if (this.account === '') return
      for (const key of this.keys(this.ours)) {
        const kept = this.read(key)
        if (kept) found.push({ key, kept })
      }
    })
    return found
  }

  private keys(beginning: string): string[] {
    const found: string[] = []
    for (let i = 0; i < (this.storage?.length ?? 0); ++i) {
      const key = this.storage?.key(i)
      if (key?.startsWith(beginning)) found.push(key)
    }
    return found
  }

  private read(key: string): Kept | null {
    try {
      const kept = JSON.parse(this.storage?.getItem(key) ?? '') as Kept
      return typeof kept.text === 'string' && typeof kept.at === 'number' ? kept : null
    } catch {
      return null
    }
  }

  /** Drops what is too old, whoever typed it, and the oldest of what is too much. */
  private sweep(): void {
    const now = this.now()
    const kept: { key: string; at: number; size: number }[] = []
    for (const key of this.keys(prefix)) {
      const draft = this.read(key)
      if (!draft || now - draft.at > longestAge) this.storage?.removeItem(key)
      else kept.push({ key, at: draft.at, size: draft.text.length })
    }
    for (const key of this.keys(beatPrefix)) {
      if (now - Number(this.storage?.getItem(key)) > longestAge) this.storage?.removeItem(key)
    }
    let size = kept.reduce((sum, draft) => sum + draft.size, 0)
    for (const draft of kept.sort((a, b) => a.at - b.at)) {
      if (size <= longestOfAll) break
      this.storage?.removeItem(draft.key)
      size -= draft.size
    }
  }

  /** Storage may be full, or forbidden; then nothing is kept. */
  private guard(act: () => void): void {
    try {
      act()
    } catch {
      // What was typed is still in the field.
    }
  }
}

export function deviceStorage(): DraftStorage | null {
  try {
    return localStorage
  } catch {
    return null
  }
}
