/** What a person types into one text control, between the key press and the server's acknowledgement. */
export class PendingText {
  /** The text on view. */
  text: string
  /** Typed and not sent yet. */
  dirty = false
  private sentSeq = 0
  private sentText = ''
  private serverText: string

  constructor(text: string) {
    this.text = text
    this.serverText = text
  }

  type(text: string): void {
    this.text = text
    this.dirty = true
  }

  sent(seq: number): void {
    this.dirty = false
    this.sentSeq = seq
    this.sentText = this.text
  }

  /** The server tells a text; true when it is to be shown. It is older than what was typed since, when it comes from
   *  before the newest text event, or while typing goes on. */
  receive(text: string, ack: number): boolean {
    this.serverText = text
    if (ack >= this.sentSeq) this.sentSeq = 0
    if (this.dirty || this.sentSeq > 0) return false
    this.text = text
    return true
  }

  /** An event of ours was refused; true when the text on view goes back to the server's. */
  refused(seq: number): boolean {
    if (seq !== this.sentSeq || this.dirty) return false
    this.sentSeq = 0
    this.text = this.serverText
    return true
  }

  /** The server has handled the events up to this one. A text that it changed meanwhile was received before. */
  acknowledged(seq: number): void {
    if (this.sentSeq === 0 || seq < this.sentSeq) return
    this.sentSeq = 0
    this.serverText = this.sentText
  }

  /** The server has this text, or is going to get it back. */
  get asServer(): boolean {
    return this.text === this.serverText
  }

  get unsettled(): boolean {
    return this.dirty || this.sentSeq > 0
  }

  /** A new connection: what was typed and not acknowledged is to be sent again; else the server's text counts. */
  reconnected(serverText: string): void {
    const kept = this.dirty || this.sentSeq > 0
    this.sentSeq = 0
    this.serverText = serverText
    this.dirty = kept && this.text !== serverText
    if (!this.dirty) this.text = serverText
  }
}
