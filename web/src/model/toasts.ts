import { signal } from '@preact/signals'
import type { OfferedFile } from '../wire/protocol'

interface Toast {
  id: number
  /** What it is about: a later toast about the same thing takes its place, and one that says the same is counted. */
  topic: string
  text: string
  detail: string
  failed: boolean
  /** Neither done nor failed. */
  neutral: boolean
  count: number
  /** What it offers; such a notice stays until it is used. */
  file?: OfferedFile | undefined
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

  add(text: string, more: { detail?: string; failed?: boolean; neutral?: boolean; topic?: string; file?: OfferedFile } = {}): void {
    const { detail = '', failed = false, neutral = false } = more
    const topic = more.topic ?? `${failed} ${text} ${detail}`
    const same = this.shown.peek().find(toast => toast.topic === topic)
    if (same) {
      const repeated = same.text === text && same.detail === detail && same.failed === failed
      const count = repeated ? same.count + 1 : 1
      this.shown.value = this.shown.peek().map(toast => (toast === same ? { ...toast, text, detail, failed, neutral, count, file: more.file } : toast))
      this.start({ ...same, failed })
      return
    }
    const toast = { id: this.nextId++, topic, text, detail, failed, neutral, count: 1, file: more.file }
    const kept = this.shown.peek().slice(1 - shownAtMost)
    for (const old of this.shown.peek()) if (!kept.includes(old)) this.stop(old.id)
    this.shown.value = [...kept, toast]
    this.start(toast)
  }

  dismiss(id: number): void {
    this.stop(id)
    this.shown.value = this.shown.peek().filter(toast => toast.id !== id)
  }

  /** A file is offered no more. */
  dropFile(token: string): void {
    for (const toast of this.shown.peek()) if (toast.file?.token === token) this.dismiss(toast.id)
  }

  /** While somebody reads them, they stay. */
  hold(held: boolean): void {
    this.held = held
    for (const toast of this.shown.peek()) {
      if (held) this.stop(toast.id)
      else this.start(toast)
    }
  }

  clear(): void {
    for (const toast of this.shown.peek()) this.stop(toast.id)
    this.shown.value = []
  }

  private start({ id, failed, file }: Pick<Toast, 'id' | 'failed' | 'file'>): void {
    this.stop(id)
    if (this.held || file) return
    this.timers.set(id, setTimeout(() => this.dismiss(id), failed ? longStay : shortStay))
  }

  private stop(id: number): void {
    clearTimeout(this.timers.get(id))
    this.timers.delete(id)
  }
}
