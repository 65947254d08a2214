import { batch, computed, signal, type ReadonlySignal } from '@preact/signals'
import type { ChangeMessage, Control, FormMessage, Kind, LayoutNode, PlainMessage, UserEvent } from '../wire/protocol'
import type { Draft, DraftPlace, Drafts } from './drafts'
import { framesAround, gridded } from './layout'
import { ListModel } from './list'
import { PendingText } from './pending-text'
import type { Range } from './selection'
import { TableModel } from './table'

/** What a form needs of the session that it lives in. */
export interface Link {
  /** Sends an event and returns its number, or 0 when there is no connection. */
  event(control: ControlModel, event: UserEvent): number
  send(message: PlainMessage): boolean
  /** Asks that what the control still holds back is sent soon. */
  later(control: ControlModel): void
  /** Where typed texts are kept until they are saved. */
  readonly drafts?: Drafts
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
  readonly table: TableModel | null
  /** Somebody is in the field, and may not have finished. */
  readonly typing = signal(false)
  /** Clicks that the server has not finished. */
  readonly waiting = signal(0)
  private readonly pending: PendingText | null
  /** Clicks of a button that adds to lists, with what stood in their field. */
  private adding = new Map<number, string>()
  /** The item that was chosen here, of this revision of the list. */
  private chosenHere: { index: number; revision: number } | null = null
  private chooseSeq = 0
  private queuedChoice: number | null = null
  /** A text that was typed here before and not saved. */
  readonly draft = signal<Draft | null>(null)
  private readonly keepsDrafts: boolean
  /** Where what is being typed is kept, from its first letter on. */
  private draftPlace: DraftPlace | null = null

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
    this.keepsDrafts = control.kind === 'TextField' && control.secret !== true && control.choosesRows !== true
    this.list = listKinds.has(control.kind)
      ? new ListModel(form.name, name, control.items ?? { length: 0, revision: 0 }, message => form.link.send(message))
      : null
    this.table =
      control.kind === 'Table' ? new TableModel(form.name, name, control.rows?.revision ?? 0, message => form.link.send(message)) : null
  }

  /** A text field with a text, a list with an item chosen, a table with a row chosen. */
  get holdsSomething(): boolean {
    if (this.table) return (this.shown.value.chosen ?? []).length > 0
    return this.list && !this.pending ? (this.shown.value.index ?? -1) >= 0 : this.text.value.trim() !== ''
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
    this.keepDraft()
    const seq = this.form.link.event(this, { event: 'text', text: this.pending.text })
    if (seq > 0) this.pending.sent(seq)
  }

  /** Whether leaving the form would lose what was typed. */
  get unsaved(): boolean {
    const { unsaved, choosesRows } = this.shown.value
    return unsaved === true || (this.pending?.dirty === true && choosesRows !== true)
  }

  /** The name of what the field shows, where the form shows one of several things in it. */
  get draftOf(): string {
    for (const other of this.form.controls.values()) {
      if (other.kind === 'ComboBox' && other.shown.value.replaces?.includes(this.name)) return other.comboText
    }
    return ''
  }

  private get comboText(): string {
    return this.pending ? this.text.value : (this.shown.value.text ?? '')
  }

  private get placeNow(): DraftPlace {
    return { form: this.form.name, field: this.name, of: this.draftOf }
  }

  private keepDraft(): void {
    if (!this.keepsDrafts) return
    this.draftPlace ??= this.placeNow
    // Typed and taken back within a moment.
    if (this.pending?.asServer && !this.shown.peek().unsaved) this.form.link.drafts?.drop(this.draftPlace)
    else this.form.link.drafts?.keep(this.draftPlace, this.text.peek())
  }

  lookForDraft(): void {
    if (this.keepsDrafts) this.draft.value = this.form.link.drafts?.find(this.form.name, this.name, this.text.peek()) ?? null
  }

  restoreDraft(): void {
    const draft = this.draft.peek()
    if (!draft) return
    this.discardDraft()
    this.type(draft.text)
  }

  discardDraft(): void {
    const draft = this.draft.peek()
    if (draft) this.form.link.drafts?.discard(draft)
    this.draft.value = null
  }

  /** Has the list read again. */
  reload(): void {
    this.form.link.event(this, { event: 'reload' })
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
    const entry = this.form.addedTo(this)[0]?.entryField
    if (entry) this.adding.set(seq, entry.text.peek())
    return true
  }

  /** The field that takes an entry of this list. */
  get entryField(): ControlModel | undefined {
    const { entry } = this.shown.peek()
    return entry === undefined ? undefined : this.form.controls.get(entry)
  }

  /** The button that takes entries off this list, as long as it can be used. */
  remover(): ControlModel | undefined {
    const { remove } = this.shown.value
    const button = remove === undefined ? undefined : this.form.controls.get(remove)
    return button?.visible.value && button.shown.value.enabled ? button : undefined
  }

  /** The button that opens the dialog for this list's files, as long as it can be used. */
  transferrer(): ControlModel | undefined {
    const { transfer } = this.shown.value
    const button = transfer === undefined ? undefined : this.form.controls.get(transfer)
    return button?.visible.value && button.shown.value.enabled ? button : undefined
  }

  /** Of a file list: has the form write its file for the user. */
  fetch(): void {
    this.form.link.event(this, { event: 'fetch' })
  }

  /** Removes the entry that stands in the field, as the button does. */
  removeChosen(): void {
    this.remover()?.click()
  }

  /** Removes the entries at these places on view; the host asks first. */
  removeRows(ranges: readonly Range[]): void {
    const { cache } = this.list ?? {}
    if (!cache) return
    this.form.link.event(this, { event: 'remove', revision: cache.currentRevision, ...cache.wanted, ranges })
  }

  /** Whether the row that the console has chosen is what the page works on now. Pages also choose the place that was used last, of a
   *  list that has changed since: its text is not in the field. */
  isChosen(text: string): boolean {
    const field = this.entryField
    if (!field) return true
    const { index } = this.shown.value
    const here = this.chosenHere
    if (here && here.index === index && here.revision === this.list?.cache.currentRevision) return true
    return field.text.value.trim().toLowerCase() === text.trim().toLowerCase()
  }

  /** Chooses an item. While an earlier choice is being handled, only the newest of the following ones is sent, so that
   *  a held arrow key never queues hundreds of them. */
  choose(index: number, text?: string): void {
    if (this.list) {
      this.chosenHere = { index, revision: this.list.cache.currentRevision }
      this.list.added.value = null
    }
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

  /** Chooses rows of a table. */
  chooseKeys(chosen: string[]): void {
    const seq = this.form.link.event(this, { event: 'keys', keys: chosen })
    if (seq > 0) this.overlay.value = { seq, values: { ...this.overlay.peek()?.values, chosen } }
  }

  sortBy(sort: string): void {
    const seq = this.form.link.event(this, { event: 'sort', text: sort })
    if (seq > 0) this.overlay.value = { seq, values: { ...this.overlay.peek()?.values, sort } }
  }

  filterBy(filter: string): void {
    const seq = this.form.link.event(this, { event: 'filter', text: filter })
    if (seq > 0) this.overlay.value = { seq, values: { ...this.overlay.peek()?.values, filter } }
  }

  /** Chooses the entry with this text as soon as it is known where it is, and brings it into view. */
  chooseEntry(text: string): void {
    const { list } = this
    list?.seek({ find: text }, found => {
      if (!found) return
      if (found.position === null) list.setView({ filter: '' })
      this.choose(found.index)
      list.seek({ index: found.index }, again => {
        list.wanted.value = again
      })
    })
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
      if (change.sort !== undefined || change.filter !== undefined) this.table?.restart()
      if (change.rows) this.table?.setRevision(change.rows.revision)
      this.settle(ack)
      if (change.unsaved === false) this.noLongerUnsaved(change.setAside === true)
    })
  }

  /** An act has used what was typed, or the page has put something else in its place: then it can be had back. */
  private noLongerUnsaved(setAside: boolean): void {
    if (this.pending?.dirty) return
    // It may have been typed before the page was loaded anew.
    if (this.keepsDrafts && !setAside) this.form.link.drafts?.drop(this.draftPlace ?? this.placeNow)
    this.draftPlace = null
    this.lookForDraft()
  }

  /** The form has been closed; an act may have used what was typed just before. */
  gone(unsaved: boolean): void {
    if (this.keepsDrafts && !unsaved && (this.draftPlace || this.unsaved)) this.form.link.drafts?.drop(this.draftPlace ?? this.placeNow)
    this.draftPlace = null
  }

  /** The server has handled every event up to this one. */
  settle(seq: number): void {
    this.pending?.acknowledged(seq)
    const over = this.overlay.peek()
    if (over && over.seq <= seq) this.overlay.value = null
  }

  done(seq: number): void {
    this.settle(seq)
    this.showAdded(seq)
    if (this.chooseSeq === 0 || seq < this.chooseSeq) return
    this.chooseSeq = 0
    if (this.queuedChoice !== null) this.sendChoice(this.queuedChoice)
  }

  refused(seq: number): void {
    this.adding.delete(seq)
    if (this.pending?.refused(seq)) this.text.value = this.pending.text
    this.done(seq)
  }

  /** The entry that a click added, as the page has stored it: its field may show another form of it now. */
  private showAdded(seq: number): void {
    for (const [click, typed] of this.adding) {
      if (click > seq) continue
      this.adding.delete(click)
      for (const control of this.form.addedTo(this)) control.list?.showAdded(control.entryField?.text.peek() || typed)
    }
  }

  get unsettled(): boolean {
    return this.adding.size > 0 || this.overlay.peek() !== null || this.chooseSeq > 0 || this.pending?.unsettled === true
  }

  /** The form came again on a new connection. */
  restore(control: Control): void {
    batch(() => {
      this.base.value = control
      this.overlay.value = null
      this.waiting.value = 0
      this.adding.clear()
      this.chooseSeq = 0
      this.queuedChoice = null
      if (this.pending) {
        this.pending.reconnected(control.text ?? '')
        this.text.value = this.pending.text
        if (this.pending.dirty) this.form.link.later(this)
      } else this.text.value = control.text ?? ''
      this.list?.reconnected(control.items ?? { length: 0, revision: 0 })
      this.table?.reconnected(control.rows?.revision ?? 0)
      this.lookForDraft()
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
  /** With which the page would show what it shows. */
  readonly query
  readonly layout
  readonly controls = new Map<string, ControlModel>()
  /** Gone on the server, but kept on view until its successor arrives. */
  readonly closed = signal(false)
  /** The control that was missing when a button was pressed, until it is there. */
  readonly missing = signal<ControlModel | null>(null)
  /** The field whose text a button would have refused, with the reason; about this text only. */
  readonly unfit = signal<{ control: ControlModel; text: string; hint: string } | null>(null)
  /** The label controls that are drawn with the control that they name, or whose work they tell. */
  readonly usedLabels = new Set<string>()
  readonly link: Link
  private frames: ReadonlyMap<string, string>
  private gridded: ReadonlySet<string>

  constructor(message: FormMessage, link: Link) {
    this.link = link
    this.name = message.form
    this.dialog = message.dialog
    this.modal = message.modal
    this.caption = signal(message.caption)
    this.query = signal(message.query ?? '')
    this.layout = signal<LayoutNode>(message.layout)
    this.frames = framesAround(message.layout)
    this.gridded = new Set(gridded(message.layout))
    for (const [name, control] of Object.entries(message.controls)) {
      this.controls.set(name, new ControlModel(this, name, control))
      if (control.label !== undefined) this.usedLabels.add(control.label)
      if (control.exchange?.result !== undefined) this.usedLabels.add(control.exchange.result)
    }
    for (const control of this.controls.values()) control.lookForDraft()
  }

  get unsaved(): boolean {
    return [...this.controls.values()].some(control => control.unsaved)
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
      this.query.value = message.query ?? ''
      this.layout.value = message.layout
      this.frames = framesAround(message.layout)
      this.gridded = new Set(gridded(message.layout))
      this.closed.value = false
      for (const [name, control] of entries) this.controls.get(name)?.restore(control)
    })
    return true
  }

  change(message: ChangeMessage): void {
    batch(() => {
      if (message.caption !== undefined) this.caption.value = message.caption
      if (message.query !== undefined) this.query.value = message.query
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

  /** The lists to which the button adds. */
  addedTo(button: ControlModel): ControlModel[] {
    if (button.kind !== 'Button') return []
    return [...this.controls.values()].filter(control => control.shown.peek().add === button.name)
  }

  /** The button that adds what stands in the field, where there is just one. */
  adderOf(field: ControlModel): ControlModel | undefined {
    const names = new Set<string>()
    for (const { shown } of this.controls.values()) {
      const { entry, add } = shown.peek()
      if (entry === field.name && add !== undefined) names.add(add)
    }
    const [name = this.mainButtonOf(field)] = names
    const button = name === undefined || names.size > 1 ? undefined : this.controls.get(name)
    return button?.visible.peek() && button.shown.peek().enabled ? button : undefined
  }

  /** The form's main button, if it works on this field. */
  private mainButtonOf(field: ControlModel): string | undefined {
    const main = [...this.controls.values()].filter(({ shown }) => shown.peek().primary)
    const [button] = main
    return main.length === 1 && button?.shown.peek().needs?.includes(field.name) ? button.name : undefined
  }

  /** The control that has to be filled in or chosen from before the button makes sense; undefined if nothing is missing. */
  missingFor(button: ControlModel): ControlModel | undefined {
    const needed = (button.shown.peek().needs ?? []).flatMap(name => this.controls.get(name) ?? [])
    return needed.some(control => control.holdsSomething) ? undefined : needed.find(control => control.visible.peek())
  }

  /** What adds to lists stands out, most where one button does it for the whole form; what removes or destroys looks dangerous. */
  lookOf(button: ControlModel): '' | ' primary' | ' tinted' | ' danger' {
    if (button.shown.peek().destroys && !this.keepsFor(button)) return ' danger'
    const adders = new Set<string>()
    for (const { shown } of this.controls.values()) {
      const { add, remove } = shown.peek()
      if (remove === button.name) return ' danger'
      if (add !== undefined) adders.add(add)
    }
    if (!adders.has(button.name)) return ''
    return adders.size === 1 ? ' primary' : ' tinted'
  }

  /** Whether a button that exchanges files destroys nothing this time: an export or an import is chosen. */
  private keepsFor(button: ControlModel): boolean {
    for (const { shown } of this.controls.values()) {
      const { exchange } = shown.peek()
      if (exchange?.run !== button.name) continue
      return [exchange.exports, exchange.imports].some(name => this.controls.get(name ?? '')?.shown.value.value === 1)
    }
    return false
  }

  /** Whether choosing an entry of a list fills the field. */
  feedsFrom(field: ControlModel): boolean {
    return [...this.controls.values()].some(control => control.shown.peek().entry === field.name)
  }

  /** What else is said with a caption that several buttons have: the field that the button works on, or the frame around it. */
  contextOf(button: ControlModel): string {
    const caption = this.labelOf(button.shown.value)
    const same = [...this.controls.values()].filter(
      other => other.kind === 'Button' && other.visible.value && this.labelOf(other.shown.value) === caption,
    )
    if (same.length < 2) return ''
    const frames = new Set(same.map(other => this.frameAround(other.name)))
    const frame = this.frameAround(button.name)
    if (frame && frames.size === same.length) return this.labelOf(frame.shown.value)
    const needed = this.controls.get(button.shown.value.needs?.[0] ?? '')
    const about = needed ?? frame
    return about ? this.labelOf(about.shown.value) : ''
  }

  /** Whether what the control does is written below its caption rather than in a tool tip. */
  explains(control: ControlModel): boolean {
    return control.kind === 'CheckBox' && this.gridded.has(control.name)
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
