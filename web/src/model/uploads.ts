import { signal } from '@preact/signals'
import type { UploadFailureCode, FailureCode } from '../wire/protocol'

export const longestUpload = 64 * 1024 * 1024

export type UploadProblem = FailureCode | UploadFailureCode | 'unreachable'

export interface Sending {
  name: string
  done: number
  total: number
}

/** What a request for an upload needs of the browser. */
export interface Request {
  send(target: string, file: Blob, progress: (done: number) => void): Promise<{ status: number; body: string }>
  abort(): void
}

/** Where a file goes, as the host reads it. */
export function targetOf(form: string, control: string, name: string): string {
  // A name may hold halves of characters, which cannot be encoded.
  const wellFormed = new TextDecoder().decode(new TextEncoder().encode(name))
  return [form, control, wellFormed].map(encodeURIComponent).join('/')
}

function problemIn(status: number, body: string): UploadProblem {
  try {
    const told = (JSON.parse(body) as { error?: UploadProblem }).error
    if (told) return told
  } catch {
    // Not by the console itself.
  }
  if (status === 413) return 'too_big'
  return status === 0 || status >= 500 ? 'unreachable' : 'bad_request'
}

/** The upload of one file list; one file at a time. */
export class Upload {
  readonly sending = signal<Sending | null>(null)
  onProblem: (problem: UploadProblem, name: string) => void = () => {}
  onDone: (name: string, kept: string) => void = () => {}
  private readonly makeRequest: () => Request
  private request: Request | null = null

  constructor(makeRequest: () => Request) {
    this.makeRequest = makeRequest
  }

  /** True once the host has the file and has chosen it in the list. */
  async start(form: string, control: string, file: File): Promise<boolean> {
    if (this.request) return false
    if (file.size > longestUpload) {
      this.onProblem('too_big', file.name)
      return false
    }
    const request = this.makeRequest()
    this.request = request
    this.sending.value = { name: file.name, done: 0, total: file.size }
    try {
      const answer = await request.send(targetOf(form, control, file.name), file, done => {
        if (this.request === request) this.sending.value = { name: file.name, done, total: file.size }
      })
      if (this.request !== request) return false
      if (answer.status === 200) {
        this.onDone(file.name, (JSON.parse(answer.body) as { name: string }).name)
        return true
      }
      this.onProblem(problemIn(answer.status, answer.body), file.name)
    } catch {
      if (this.request === request) this.onProblem('unreachable', file.name)
    } finally {
      if (this.request === request) this.finish()
    }
    return false
  }

  cancel(): void {
    const request = this.request
    this.finish()
    request?.abort()
  }

  private finish(): void {
    this.request = null
    this.sending.value = null
  }
}

/** The real one, for the console of this tab. A fetch would not tell how far it has come. */
export function browserRequest(tab: string): Request {
  const request = new XMLHttpRequest()
  return {
    send: (target, file, progress) =>
      new Promise((resolve, reject) => {
        request.open('POST', `/upload?tab=${encodeURIComponent(tab)}`)
        request.setRequestHeader('Content-Type', 'application/octet-stream')
        request.setRequestHeader('Upload-To', target)
        request.upload.onprogress = event => progress(event.loaded)
        request.onload = () => resolve({ status: request.status, body: request.responseText })
        request.onerror = reject
        request.onabort = reject
        request.send(file)
      }),
    abort: () => request.abort(),
  }
}
