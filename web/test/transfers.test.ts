import { describe, expect, it } from 'vitest'
import { sizeText } from '../src/i18n/size'
import { Files, addressOf } from '../src/model/files'
import { Upload, longestUpload, targetOf, type Request } from '../src/model/uploads'

function start() {
  const told: string[] = []
  let settle: (answer: { status: number; body: string }) => void = () => {}
  let report: (done: number) => void = () => {}
  const request: Request = {
    send: (target, _file, progress) => {
      told.push(target)
      report = progress
      return new Promise((resolve, reject) => {
        settle = answer => (answer.status < 0 ? reject(new Error('no line')) : resolve(answer))
      })
    },
    abort: () => void told.push('aborted'),
  }
  const upload = new Upload(() => request)
  upload.onProblem = (problem, name) => void told.push(`${problem}: ${name}`)
  upload.onDone = (name, kept) => void told.push(`${name} as ${kept}`)
  const send = async (answer: { status: number; body: string }, name = 'a.txt'): Promise<boolean> => {
    const sending = upload.start('transfer', 'File1', new File(['content'], name))
    settle(answer)
    return sending
  }
  return { told, upload, send, report: (done: number) => report(done), settle: (answer: { status: number; body: string }) => settle(answer) }
}

describe('uploads', () => {
  it('name their list and their file so that a header can hold it', () => {
    expect(targetOf('transfer#2', 'File1', 'ö/b c\r\n.txt')).toBe('transfer%232/File1/%C3%B6%2Fb%20c%0D%0A.txt')
    expect(targetOf('f', 'c', '\ud800.txt')).toBe('f/c/%EF%BF%BD.txt')
  })

  it('tell how they went', async () => {
    const { told, upload, send } = start()
    // What is done with a file waits for this answer.
    expect(await send({ status: 200, body: '{"name": "a (2).txt"}' })).toBe(true)
    expect(await send({ status: 409, body: '{"error": "no_form"}' })).toBe(false)
    await send({ status: 413, body: '' })
    await send({ status: 502, body: '<html>' })
    await send({ status: -1, body: '' })
    expect(told.filter(text => !text.startsWith('transfer/'))).toEqual([
      'a.txt as a (2).txt',
      'no_form: a.txt',
      'too_big: a.txt',
      'unreachable: a.txt',
      'unreachable: a.txt',
    ])
    expect(upload.sending.value).toBeNull()
  })

  it('are one at a time, and can be stopped', async () => {
    const { told, upload, report, settle } = start()
    const first = upload.start('f', 'c', new File(['content'], 'a.txt'))
    await upload.start('f', 'c', new File([''], 'b.txt'))
    report(3)
    expect(upload.sending.value).toEqual({ name: 'a.txt', done: 3, total: 7 })
    upload.cancel()
    expect(upload.sending.value).toBeNull()
    settle({ status: -1, body: '' })
    await first
    expect(told).toEqual(['f/c/a.txt', 'aborted'])
  })

  it('do not even begin with what is too big', async () => {
    const { told, upload } = start()
    await upload.start('f', 'c', { name: 'big', size: longestUpload + 1 } as File)
    expect(told).toEqual(['too_big: big'])
  })
})

describe('offered files', () => {
  it('stay listed until they are dismissed', () => {
    const files = new Files()
    const [one, two] = [{ token: 'a', name: '1', size: 1 }, { token: 'b', name: '2', size: 2 }]
    files.told([one, two])
    files.fetched('a')
    files.add({ ...one, size: 3 })
    expect(files.offered.value.map(file => [file.token, file.size, file.fetched])).toEqual([['b', 2, false], ['a', 3, false]])
    files.fetched('b')
    files.dismiss('a')
    expect(files.offered.value).toEqual([{ ...two, fetched: true }])
    expect(addressOf(two)).toBe('/file/b')
  })

  it.each([[0, '0 bytes', '0 Byte'], [999, '999 bytes', '999 Byte'], [3200, '3.2 kB', '3,2 kB'], [64_000_000, '64 MB', '64 MB']])(
    'of %i bytes tell their size',
    (bytes, english, german) => {
      expect(sizeText(bytes, new Intl.NumberFormat('en'))).toBe(english)
      expect(sizeText(bytes, new Intl.NumberFormat('de')).replace('\u00a0', ' ')).toBe(german)
    },
  )
})
