import { batch, computed, signal } from '@preact/signals'
import type { Connection } from '../wire/connection'
import type {
  BoxMessage,
  BusyMessage,
  CaptionsMessage,
  ErrorCode,
  FormMessage,
  Hello,
  Language,
  OfferedFile,
  PlainMessage,
  Reply,
  ServerMessage,
  UserEvent,
} from '../wire/protocol'
import type { ActivityModel } from './activity'
import { Drafts } from './drafts'
import { EntryFinder } from './entry-search'
import { Files } from './files'
import { FormModel, type ControlModel, type Link } from './form'
import { Terminals } from './terminals'

const typingPause = 200
/** The host closes the line on messages beyond 1 MiB; what frames the text in its message takes some of it. */
const longestText = 1_000_000
/** After a reconnection the forms that are still open are told at once; what stays untold is gone. */
const retellingTime = 1500

export interface Refusal {
  code: ErrorCode | 'not_connected' | 'too_long'
  text: string
}

const byteLength = (text: string): number => new TextEncoder().encode(text).length

/** What the session shows, and what people do to it. */
export class Session implements Link {
  readonly hello = signal<Hello | null>(null)
  readonly page = signal<FormModel | null>(null)
  readonly dialogs = signal<readonly FormModel[]>([])
  readonly boxes = signal<readonly BoxMessage[]>([])
  readonly busy = signal<BusyMessage | null>(null)
  /** The page that was asked for and has not come yet. */
  readonly opening = signal<string | null>(null)
  /** The query that it was asked for with. */
  openingQuery = ''
  readonly captions = signal<CaptionsMessage['pages'] | null>(null)
  /** The control that is to get the focus as soon as its page is there. */
  readonly wanted = signal<{ page: string; control: string; entry?: string | undefined } | null>(null)
  readonly entries: EntryFinder
  /** True while something must be answered before the page can be used. */
  readonly blocked = computed(() => this.boxes.value.length > 0 || this.dialogs.value.some(dialog => dialog.modal))
  readonly terminals: Terminals
  readonly files = new Files()
  onRefusal: (refusal: Refusal) => void = () => {}
  /** A page wants another one to be opened. */
  onGo: (page: string, query: string) => void = () => {}
  /** The person agrees to leave what was typed and not saved. */
  onLeave: () => void = () => {}
  onFile: (file: OfferedFile, awaited: boolean) => void = () => {}
  onUnfit: (control: ControlModel) => void = () => {}
  /** The tab has another console than the one that it had. */
  onRenewed: () => void = () => {}

  private readonly connection: Connection
  private readonly activity: ActivityModel
  private readonly clicks = new Map<number, ControlModel>()
  private openSeq = 0
  private readonly holding = new Set<ControlModel>()
  private readonly unsettled = new Set<ControlModel>()
  private flushing = false
  private flushTimer: ReturnType<typeof setTimeout> | undefined
  private freshSocket = false
  private untold = new Set<FormModel>()
  private purgeTimer: ReturnType<typeof setTimeout> | undefined

  readonly drafts: Drafts

  constructor(connection: Connection, activity: ActivityModel, drafts = new Drafts(null)) {
    this.connection = connection
    this.activity = activity
    this.drafts = drafts
    this.terminals = new Terminals(message => connection.send(message))
    this.entries = new EntryFinder(message => connection.send(message))
  }

  /** A new socket was opened. */
  opened(): void {
    this.freshSocket = true
  }

  open(page: string, query = ''): void {
    if (this.opening.peek() === page && this.openingQuery === query) return
    this.flush()
    const seq = this.connection.sendSequenced({ type: 'open', page, query })
    if (seq === 0) return this.onRefusal({ code: 'not_connected', text: '' })
    this.openSeq = seq
    this.openingQuery = query
    this.opening.value = page
  }

  /** Opens the page if need be and puts the focus on a control of it; of a list, chooses this entry. */
  find(page: string, control: string, entry?: string): void {
    this.wanted.value = { page, control, entry }
    if (this.page.peek()?.name !== page) this.open(page)
  }

  /** Changes the language of the console. */
  speak(language: Language): void {
    this.flush()
    if (this.connection.sendSequenced({ type: 'language', language }) === 0) {
      this.onRefusal({ code: 'not_connected', text: '' })
    }
  }

  close(form: FormModel): void {
    this.flush()
    if (this.connection.sendSequenced({ type: 'close', form: form.name }) === 0) {
      this.onRefusal({ code: 'not_connected', text: '' })
    }
  }

  /** Has the host ask before the person signs out; false if there is nothing to ask about, or nobody who asks. */
  askToLeave(): boolean {
    // What is on its way to the host is not known to be unsaved yet.
    const asks = this.unsaved || this.unsettled.size > 0
    this.flush()
    return asks && this.connection.sendSequenced({ type: 'leave' }) > 0
  }

  answer(box: BoxMessage, reply: Reply): void {
    if (!this.connection.send({ type: 'answer', id: box.id, reply })) {
      return this.onRefusal({ code: 'not_connected', text: '' })
    }
    this.boxes.value = this.boxes.peek().filter(other => other.id !== box.id)
  }

  /** Takes what this account has typed and not saved off the device; what stands in the fields stays there. */
  forgetDrafts(): void {
    this.drafts.clear()
    for (const form of [this.page.peek(), ...this.dialogs.peek()]) {
      for (const control of form?.controls.values() ?? []) control.lookForDraft()
    }
  }

  /** Whether leaving the console would lose something that was typed. */
  get unsaved(): boolean {
    return this.page.peek()?.unsaved === true || this.dialogs.peek().some(dialog => dialog.unsaved)
  }

  askCaptions(): void {
    if (this.captions.peek() === null) this.connection.send({ type: 'captions' })
  }

  event(control: ControlModel, event: UserEvent): number {
    if (event.event !== 'text') this.flush()
    else if (event.text.length > longestText / 6 && byteLength(JSON.stringify(event.text)) > longestText) {
      this.onRefusal({ code: 'too_long', text: '' })
      return 0
    }
    const seq = this.connection.sendSequenced({
      type: 'event',
      form: control.form.name,
      control: control.name,
      ...event,
    })
    if (seq === 0) {
      if (event.event !== 'text') this.onRefusal({ code: 'not_connected', text: '' })
      return 0
    }
    this.unsettled.add(control)
    if (event.event === 'click' || event.event === 'fetch') {
      this.clicks.set(seq, control)
      control.waiting.value++
      if (control.shown.peek().kind === 'OptionButton') {
        for (const other of control.form.controls.values()) this.unsettled.add(other)
      }
    }
    return seq
  }

  send(message: PlainMessage): boolean {
    return this.connection.send(message)
  }

  later(control: ControlModel): void {
    this.holding.add(control)
    clearTimeout(this.flushTimer)
    this.flushTimer = setTimeout(() => this.flushTexts(), typingPause)
  }

  /** Sends everything that is held back, so that the server sees the events in the order in which they were made. */
  flush(): void {
    if (this.flushing) return
    this.flushing = true
    clearTimeout(this.flushTimer)
    for (const control of this.holding) control.flush()
    this.dropSent()
    this.flushing = false
  }

  receive(message: ServerMessage): void {
    batch(() => this.dispatch(message))
  }

  /** The session is over: nothing of it stays on view. */
  reset(): void {
    // What was typed in the last moment is kept as a draft at least.
    this.flushTexts()
    batch(() => {
      this.hello.value = null
      this.page.value = null
      this.dialogs.value = []
      this.boxes.value = []
      this.busy.value = null
      this.opening.value = null
      this.captions.value = null
      this.wanted.value = null
      this.terminals.reset()
      this.files.told([])
    })
    clearTimeout(this.flushTimer)
    clearTimeout(this.purgeTimer)
    this.clicks.clear()
    this.holding.clear()
    this.unsettled.clear()
    this.activity.reset()
    this.drafts.belongTo('', '')
  }

  /** A pause in typing sends the texts; a choice that waits for its predecessor goes on waiting. */
  private flushTexts(): void {
    for (const control of this.holding) control.flushText()
    this.dropSent()
  }

  private dropSent(): void {
    for (const control of this.holding) if (!control.holdsBack) this.holding.delete(control)
  }

  private dispatch(message: ServerMessage): void {
    switch (message.type) {
      case 'hello':
        return this.welcome(message)
      case 'form':
        return this.showForm(message)
      case 'change':
        this.findForm(message.form)?.change(message)
        return
      case 'closed':
        return this.formClosed(message.form, message.unsaved)
      case 'rows':
        this.findForm(message.form)?.controls.get(message.control)?.list?.accept(message)
        return
      case 'cells':
        this.findForm(message.form)?.controls.get(message.control)?.table?.accept(message)
        return
      case 'leave':
        return this.onLeave()
      case 'go':
        return this.onGo(message.page, message.query)
      case 'box':
        this.boxes.value = [...this.boxes.peek().filter(box => box.id !== message.id), message]
        return
      case 'unbox':
        this.boxes.value = this.boxes.peek().filter(box => box.id !== message.id)
        return
      case 'busy':
        this.busy.value = message.on ? message : null
        return
      case 'activity':
        return this.activity.took(message)
      case 'record':
        return this.activity.accept(message)
      case 'captions':
        this.captions.value = message.pages
        return
      case 'entries':
        return this.entries.accept(message)
      case 'terminal':
      case 'output':
      case 'ended':
      case 'gone':
        return this.terminals.receive(message)
      case 'file':
        this.files.add(message)
        this.onFile(message, message.awaited === true)
        return
      case 'files':
        return this.files.told(message.files)
      case 'done':
        if (message.seq === this.openSeq) this.stayed()
        return this.finished(message.seq, control => control.done(message.seq))
      case 'error':
        return this.refused(message.seq ?? 0, message)
    }
  }

  private welcome(message: Hello): void {
    const previous = this.hello.peek()
    this.hello.value = message
    this.drafts.belongTo(message.account, message.tab)
    if (previous?.language !== message.language) this.captions.value = null
    if (!this.freshSocket) return this.activity.restarted()
    this.freshSocket = false
    if (previous && previous.tab !== message.tab) this.renewed()
    this.opening.value = null
    this.boxes.value = []
    this.busy.value = null
    this.clicks.clear()
    this.unsettled.clear()
    this.activity.reconnected()
    this.terminals.reconnected()
    const page = this.page.peek()
    this.untold = new Set([...(page ? [page] : []), ...this.dialogs.peek()])
    clearTimeout(this.purgeTimer)
    this.purgeTimer = setTimeout(() => this.purge(), retellingTime)
  }

  /** The console of before is gone, and its forms with it. */
  private renewed(): void {
    this.page.value = null
    this.dialogs.value = []
    this.holding.clear()
    this.files.told([])
    this.onRenewed()
  }

  private purge(): void {
    const page = this.page.peek()
    if (page && this.untold.has(page)) this.page.value = null
    this.dialogs.value = this.dialogs.peek().filter(dialog => !this.untold.has(dialog))
    this.untold.clear()
    this.terminals.settle()
  }

  private showForm(message: FormMessage): void {
    const known = this.findForm(message.form)
    if (known) {
      this.untold.delete(known)
      if (!known.closed.peek() && known.dialog === message.dialog && known.restore(message)) {
        if (!message.dialog) this.opening.value = null
        return
      }
    }
    const form = new FormModel(message, this)
    if (message.dialog) {
      this.dialogs.value = [...this.dialogs.peek().filter(dialog => dialog.name !== form.name), form]
    } else {
      this.page.value = form
      this.opening.value = null
    }
  }

  private formClosed(name: string, unsaved: readonly string[] = []): void {
    for (const control of this.findForm(name)?.controls.values() ?? []) control.gone(unsaved.includes(control.name))
    const page = this.page.peek()
    if (page?.name === name) page.closed.value = true
    else this.dialogs.value = this.dialogs.peek().filter(dialog => dialog.name !== name)
    for (const control of this.holding) if (control.form.name === name) this.holding.delete(control)
  }

  /** The person did not leave the page after all. */
  private stayed(): void {
    this.openSeq = 0
    this.opening.value = null
    if (this.wanted.peek()?.page !== this.page.peek()?.name) this.wanted.value = null
  }

  private refused(seq: number, error: { code: ErrorCode; text: string; request?: number; form?: string; control?: string }): void {
    if (seq > 0 && seq === this.openSeq) {
      this.opening.value = null
      this.wanted.value = null
    }
    this.finished(seq, control => control.refused(seq))
    if (error.code === 'unfit' && this.explain(error)) return
    // A form that is gone is gone from view too; rows that it was asked for before need no word.
    if (error.code !== 'no_form' && error.request === undefined) this.onRefusal(error)
  }

  /** The button would refuse what stands in the field: the field says why, and gets the focus. */
  private explain(error: { text: string; form?: string; control?: string }): boolean {
    const form = this.findForm(error.form ?? '')
    const control = form?.controls.get(error.control ?? '')
    if (!form || !control) return false
    form.unfit.value = { control, text: control.text.peek(), hint: error.text }
    this.onUnfit(control)
    return true
  }

  private finished(seq: number, settle: (control: ControlModel) => void): void {
    const clicked = this.clicks.get(seq)
    if (clicked) {
      this.clicks.delete(seq)
      clicked.waiting.value = Math.max(0, clicked.waiting.peek() - 1)
    }
    for (const control of this.unsettled) {
      settle(control)
      if (!control.unsettled) this.unsettled.delete(control)
    }
  }

  private findForm(name: string): FormModel | undefined {
    const page = this.page.peek()
    if (page?.name === name) return page
    return this.dialogs.peek().find(dialog => dialog.name === name)
  }
}
