import { signal } from '@preact/signals'
import type { OfferedFile } from '../wire/protocol'

interface ListedFile extends OfferedFile {
  fetched: boolean
}

/** The files that pages have made for the user. */
export class Files {
  readonly offered = signal<readonly ListedFile[]>([])

  /** All that the host holds and nobody has fetched. */
  told(files: readonly OfferedFile[]): void {
    this.offered.value = files.map(file => ({ ...file, fetched: false }))
  }

  /** A new one, or one that was made anew. */
  add(file: OfferedFile): void {
    const { token, name, size } = file
    this.offered.value = [...this.without(token), { token, name, size, fetched: false }]
  }

  fetched(token: string): void {
    this.offered.value = this.offered.peek().map(file => (file.token === token ? { ...file, fetched: true } : file))
  }

  dismiss(token: string): void {
    this.offered.value = this.without(token)
  }

  private without(token: string): ListedFile[] {
    return this.offered.peek().filter(file => file.token !== token)
  }
}

export const addressOf = (file: OfferedFile): string => `/file/${encodeURIComponent(file.token)}`
