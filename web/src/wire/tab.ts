/** Where the browser remembers something for a tab. A duplicated tab begins with a copy of it. */
export interface TabStorage {
  getItem(name: string): string | null
  setItem(name: string, value: string): void
  removeItem(name: string): void
}

const idKey = 'console-tab'
const heldKey = 'console-tab-held'

/** Which of the session's consoles belongs to this tab. Each tab has one of its own, to which it comes back after a lost line or a reload. */
export class TabIdentity {
  private id = ''
  /** The browser may have made this tab as a copy of another one, which goes on using the console. */
  private maybeCopy = false
  private readonly storage: TabStorage | null

  constructor(storage: TabStorage | null) {
    this.storage = storage
    this.id = this.read(idKey) ?? ''
    // Whoever leaves a page takes this away: if it is there, the other page is still open, or ended without a word.
    this.maybeCopy = this.id !== '' && this.read(heldKey) !== null
    if (this.id !== '') this.hold()
  }

  get path(): string {
    if (this.id === '') return '/ws'
    return `/ws?tab=${encodeURIComponent(this.id)}${this.maybeCopy ? '&copy=1' : ''}`
  }

  /** The console has greeted this tab as this one. True if it is another console than the one that the tab had. */
  greeted(id: string): boolean {
    const other = this.id !== '' && this.id !== id
    this.id = id
    this.maybeCopy = false
    this.write(idKey, id)
    this.hold()
    return other
  }

  hold(): void {
    this.write(heldKey, '1')
  }

  /** The page is left; what is loaded next in this tab is no copy. */
  release(): void {
    try {
      this.storage?.removeItem(heldKey)
    } catch {
      // Nothing was kept either.
    }
  }

  /** Somebody else may use the tab from now on. */
  forget(): void {
    this.id = ''
    this.maybeCopy = false
    this.release()
    try {
      this.storage?.removeItem(idKey)
    } catch {
      // Nothing was kept either.
    }
  }

  private read(name: string): string | null {
    try {
      return this.storage?.getItem(name) ?? null
    } catch {
      return null
    }
  }

  private write(name: string, value: string): void {
    try {
      this.storage?.setItem(name, value)
    } catch {
      // Without storage a reload gets another console.
    }
  }
}

/** Null where the browser allows none. */
export function tabStorage(): TabStorage | null {
  try {
    return sessionStorage
  } catch {
    return null
  }
}
