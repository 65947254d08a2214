import { signal } from '@preact/signals'

export interface Toast {
  id: number
  /** What it is about: a later toast about the same thing takes its place, and one that says the same is counted. */
  topic: string
  text: string
  detail: string
  failed: boolean
  count: number
}

const shownAtMost = 3
const shortStay = 4500
const longStay = 12_000

/** The short notices at the edge of the screen. */
export class Toasts {
  readonly shown = signal<readonly Toast[]>([])
  private nextId = 1
  private readonly timers = new Map<number, ReturnType<typeof setTimeout>>()
  private held = false

  add(text: string, more: { detail?: string; failed?: boolean; topic?: string } = {}): void {
    const { detail = '', failed = false } = more
    const topic = more.topic ?? `${failed} ${text} ${detail}`
    const same = this.shown.peek().find(toast => toast.topic === topic)
    if (same) {
      const repeated = same.text === text && same.detail === detail && same.failed === failed
      const count = repeated ? same.count + 1 : 1
      this.shown.value = this.shown.peek().map(toast => (toast === same ? { ...toast, text, detail, failed, count } : toast))
      this.start(same.id, failed)
      return
    }
    const toast = { id: this.nextId++, topic, text, detail, failed, count: 1 }
    const kept = this.shown.peek().slice(1 - shownAtMost)
    for (const old of this.shown.peek()) if (!kept.includes(old)) this.stop(old.id)
    this.shown.value = [...kept, toast]
    this.start(toast.id, failed)
  }

  dismiss(id: number): void {
    this.stop(id)
    this.shown.value = this.shown.peek().filter(toast => toast.id !== id)
  }

  /** While somebody reads them, they stay. */
  hold(held: boolean): void {
    this.held = held
    for (const toast of this.shown.peek()) {
      if (held) this.stop(toast.id)
      else this.start(toast.id, toast.failed)
    }
  }

  clear(): void {
    for (const toast of this.shown.peek()) this.stop(toast.id)
    this.shown.value = []
  }

  private start(id: number, failed: boolean): void {
    this.stop(id)
    if (!this.held) this.timers.set(id, setTimeout(() => this.dismiss(id), failed ? longStay : shortStay))
  }

  private stop(id: number): void {
    clearTimeout(this.timers.get(id))
    this.timers.delete(id)
  }
}
