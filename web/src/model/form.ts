import { batch, computed, signal, type ReadonlySignal } from '@preact/signals'
import type { ChangeMessage, Control, FormMessage, Kind, LayoutNode, PlainMessage, UserEvent } from '../wire/protocol'
import { framesAround } from './layout'
import { ListModel } from './list'
import { PendingText } from './pending-text'

/** What a form needs of the session that it lives in. */
export interface Link {
  /** Sends an event and returns its number, or 0 when there is no connection. */
  event(control: ControlModel, event: UserEvent): number
  send(message: PlainMessage): boolean
  /** Asks that what the control still holds back is sent soon. */
  later(control: ControlModel): void
}

interface Overlay {
  seq: number
  values: Partial<Control>
}

const listKinds = new Set(['ListBox', 'ComboBox', 'DriveList', 'FolderList', 'FileList'])
const notSentYet = Number.MAX_SAFE_INTEGER

export class ControlModel {
  readonly name: string
  readonly form: FormModel
  /** What the server told. */
  private readonly base
  /** What the user just did, shown until the server has answered it. */
  private readonly overlay = signal<Overlay | null>(null)
  readonly shown: ReadonlySignal<Control>
  readonly kind: Kind
  readonly group: string | undefined
  readonly multiLine: boolean
  readonly visible: ReadonlySignal<boolean>
  /** The text of a control in which people type. */
  readonly text
  readonly list: ListModel | null
  /** Clicks that the server has not finished. */
  readonly waiting = signal(0)
  private readonly pending: PendingText | null
  private chooseSeq = 0
  private queuedChoice: number | null = null

  constructor(form: FormModel, name: string, control: Control) {
    this.form = form
    this.name = name
    this.base = signal(control)
    this.kind = control.kind
    this.group = control.group === undefined ? undefined : String(control.group)
    this.multiLine = control.multiLine === true
    this.visible = computed(() => this.base.value.visible)
    this.shown = computed(() => {
      const over = this.overlay.value
      const told = over ? { ...this.base.value, ...over.values } : this.base.value
      // A frame that is disabled disables what stands in it.
      return told.enabled && form.frameAround(name)?.shown.value.enabled === false ? { ...told, enabled: false } : told
    })
    const typed = control.kind === 'TextField' || (control.kind === 'ComboBox' && control.editable === true)
    this.pending = typed ? new PendingText(control.text ?? '') : null
    this.text = signal(control.text ?? '')
    this.list = listKinds.has(control.kind)
      ? new ListModel(form.name, name, control.items ?? { length: 0, revision: 0 }, message => form.link.send(message))
      : null
  }

  get id(): string {
    return `c-${this.form.name}-${this.name}`
  }

  type(text: string): void {
    if (!this.pending) return
    this.pending.type(text)
    this.text.value = text
    this.form.link.later(this)
  }

  /** Sends what is held back; called before any other event goes out. */
  flush(): void {
    this.flushText()
    if (this.queuedChoice !== null) this.sendChoice(this.queuedChoice)
  }

  flushText(): void {
    if (!this.pending?.dirty) return
    const seq = this.form.link.event(this, { event: 'text', text: this.pending.text })
    if (seq > 0) this.pending.sent(seq)
  }

  get holdsBack(): boolean {
    return this.pending?.dirty === true || this.queuedChoice !== null
  }

  /** Returns false when nothing could be sent. */
  click(): boolean {
    const { kind, value } = this.shown.peek()
    const seq = this.form.link.event(this, { event: 'click' })
    if (seq === 0) return false
    if (kind === 'CheckBox') this.overlay.value = { seq, values: { value: value === 1 ? 0 : 1 } }
    if (kind === 'OptionButton') this.form.chooseOption(this, seq)
    return true
  }

  /** Chooses an item. While an earlier choice is being handled, only the newest of the following ones is sent, so that
   *  a held arrow key never queues hundreds of them. */
  choose(index: number, text?: string): void {
    if (this.pending && text !== undefined && !this.pending.dirty) this.text.value = text
    const values: Partial<Control> = this.pending || text === undefined ? { index } : { index, text }
    if (this.chooseSeq > 0) {
      this.queuedChoice = index
      this.overlay.value = { seq: notSentYet, values }
      this.form.link.later(this)
      return
    }
    this.overlay.value = { seq: notSentYet, values }
    this.sendChoice(index)
  }

  scroll(value: number): void {
    const seq = this.form.link.event(this, { event: 'scroll', value })
    if (seq > 0) this.overlay.value = { seq, values: { value } }
  }

  overlayWith(seq: number, values: Partial<Control>): void {
    this.overlay.value = { seq, values }
  }

  change(ack: number, change: Partial<Control>): void {
    batch(() => {
      this.base.value = { ...this.base.peek(), ...change }
      if (this.pending && change.text !== undefined && this.pending.receive(change.text, ack)) {
        this.text.value = change.text
      } else if (!this.pending && change.text !== undefined) this.text.value = change.text
      if (change.items) this.list?.setItems(change.items)
      this.settle(ack)
    })
  }

  /** The server has handled every event up to this one. */
  settle(seq: number): void {
    this.pending?.acknowledged(seq)
    const over = this.overlay.peek()
    if (over && over.seq <= seq) this.overlay.value = null
  }

  done(seq: number): void {
    this.settle(seq)
    if (this.chooseSeq === 0 || seq < this.chooseSeq) return
    this.chooseSeq = 0
    if (this.queuedChoice !== null) this.sendChoice(this.queuedChoice)
  }

  refused(seq: number): void {
    if (this.pending?.refused(seq)) this.text.value = this.pending.text
    this.done(seq)
  }

  get unsettled(): boolean {
    return this.overlay.peek() !== null || this.chooseSeq > 0 || this.pending?.unsettled === true
  }

  /** The form came again on a new connection. */
  restore(control: Control): void {
    batch(() => {
      this.base.value = control
      this.overlay.value = null
      this.waiting.value = 0
      this.chooseSeq = 0
      this.queuedChoice = null
      if (this.pending) {
        this.pending.reconnected(control.text ?? '')
        this.text.value = this.pending.text
        if (this.pending.dirty) this.form.link.later(this)
      } else this.text.value = control.text ?? ''
      this.list?.reconnected(control.items ?? { length: 0, revision: 0 })
    })
  }

  private sendChoice(index: number): void {
    this.queuedChoice = null
    const seq = this.form.link.event(this, { event: 'choose', index })
    const over = this.overlay.peek()
    if (seq === 0) this.overlay.value = null
    else {
      this.chooseSeq = seq
      if (over) this.overlay.value = { ...over, seq }
    }
  }
}

export class FormModel {
  readonly name: string
  readonly dialog: boolean
  readonly modal: boolean
  readonly caption
  readonly layout
  readonly controls = new Map<string, ControlModel>()
  /** Gone on the server, but kept on view until its successor arrives. */
  readonly closed = signal(false)
  /** The label controls that are drawn with the control that they name. */
  readonly usedLabels = new Set<string>()
  readonly link: Link
  private frames: ReadonlyMap<string, string>

  constructor(message: FormMessage, link: Link) {
    this.link = link
    this.name = message.form
    this.dialog = message.dialog
    this.modal = message.modal
    this.caption = signal(message.caption)
    this.layout = signal<LayoutNode>(message.layout)
    this.frames = framesAround(message.layout)
    for (const [name, control] of Object.entries(message.controls)) {
      this.controls.set(name, new ControlModel(this, name, control))
      if (control.label !== undefined) this.usedLabels.add(control.label)
    }
  }

  /** Takes the same form again, told anew; false when it is no longer the same set of controls. */
  restore(message: FormMessage): boolean {
    const entries = Object.entries(message.controls)
    if (entries.length !== this.controls.size) return false
    for (const [name, control] of entries) {
      if (this.controls.get(name)?.kind !== control.kind) return false
    }
    batch(() => {
      this.caption.value = message.caption
      this.layout.value = message.layout
      this.frames = framesAround(message.layout)
      this.closed.value = false
      for (const [name, control] of entries) this.controls.get(name)?.restore(control)
    })
    return true
  }

  change(message: ChangeMessage): void {
    batch(() => {
      if (message.caption !== undefined) this.caption.value = message.caption
      for (const [name, change] of Object.entries(message.controls)) this.controls.get(name)?.change(message.ack, change)
    })
  }

  chooseOption(chosen: ControlModel, seq: number): void {
    const { group } = chosen.shown.peek()
    for (const control of this.controls.values()) {
      const shown = control.shown.peek()
      if (shown.kind !== 'OptionButton' || shown.group !== group) continue
      control.overlayWith(seq, { value: control === chosen ? 1 : 0 })
    }
  }

  frameAround(name: string): ControlModel | undefined {
    const frame = this.frames.get(name)
    return frame === undefined ? undefined : this.controls.get(frame)
  }

  labelOf(control: Control): string {
    if (control.caption) return control.caption
    const label = control.label === undefined ? undefined : this.controls.get(control.label)?.shown.value
    return label?.visible ? (label.caption ?? '') : ''
  }
}
