using System;
using System.Collections.Generic;
using System.Linq;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>
    /// Files of the controller. A transfer blocks until it ends; run only one at a time. A list, a count or a download begins
    /// anew up to three times if a block is lost or damaged on the way.
    /// </summary>
    public sealed unsafe class Files
    {
        private const int MostRepeats = 3;
        private readonly Link link;

        internal Files(Link link)
        {
            this.link = link;
        }

        /// <summary>The names of the files of a kind, in byte order if <paramref name="sorted"/>.</summary>
        public IReadOnlyList<string> List(FileType type, bool sorted = true)
        {
            return Repeatedly(() =>
            {
                using (var handle = link.Hold())
                {
                    IStatusInfo status;
                    byte* names = Functions.file_interface_ListFiles(handle, (int)type, &status, sorted ? (byte)1 : (byte)0);
                    string text = link.Text.Take(names);
                    link.Settle(status);
                    return text.Split(new[] { '\n' }, StringSplitOptions.RemoveEmptyEntries).ToList();
                }
            });
        }

        /// <summary>The number of the files of a kind.</summary>
        public int Count(FileType type)
        {
            return Repeatedly(() =>
            {
                int count;
                using (var handle = link.Hold())
                {
                    link.Settle(Functions.file_interface_GetFileCount(handle, (int)type, &count));
                }
                return count;
            });
        }

        /// <summary>A text file, with the controller's line ends. It loses what stands behind a zero byte of a block.</summary>
        public string Get(string name)
        {
            byte[] wanted = link.Text.Encode(name);
            return Repeatedly(() =>
            {
                using (var handle = link.Hold())
                {
                    fixed (byte* file = wanted)
                    {
                        IStatusInfo status;
                        byte* content = Functions.file_interface_SaveFromControllerToString(handle, file, &status);
                        string text = link.Text.Take(content);
                        link.Settle(status);
                        return text;
                    }
                }
            });
        }

        /// <summary>Stores a text as a file, with CR LF line ends. The "//NAME" line of a job must match the file name.</summary>
        public void Put(string name, string text)
        {
            using (var handle = link.Hold())
            {
                fixed (byte* file = link.Text.Encode(name), content = link.Text.Encode(text))
                {
                    link.Settle(Functions.file_interface_LoadToControllerFromString(handle, file, content));
                }
            }
        }

        /// <summary>Fetches a file and writes it to a path of this computer, when the whole file has arrived.</summary>
        public void Download(string name, string path, bool overwrite = false)
        {
            byte[] wanted = link.Text.Encode(name);
            byte[] target = Text.Utf8.Encode(path);
            Repeatedly(() =>
            {
                using (var handle = link.Hold())
                {
                    fixed (byte* file = wanted, place = target)
                    {
                        link.Settle(Functions.file_interface_SaveFromControllerToFile(handle, file, place, overwrite ? 1 : 0));
                        return true;
                    }
                }
            });
        }

        /// <summary>Stores a file of this computer under its own name. <see cref="Controller.Noted"/> says if the controller does
        /// not list a stored job.</summary>
        public void Upload(string path)
        {
            using (var handle = link.Hold())
            {
                fixed (byte* place = Text.Utf8.Encode(path))
                {
                    link.Settle(Functions.file_interface_LoadToControllerFromPath(handle, place));
                }
            }
        }

        /// <summary>Deletes a job; ".JBI" may be left out.</summary>
        public void Delete(string name)
        {
            using (var handle = link.Hold())
            {
                fixed (byte* file = link.Text.Encode(name))
                {
                    link.Settle(Functions.file_interface_DeleteJobFile(handle, file));
                }
            }
        }

        /// <summary>A read is safe to repeat.</summary>
        private static T Repeatedly<T>(Func<T> read)
        {
            for (int repeats = 0; ; ++repeats)
            {
                try
                {
                    return read();
                }
                catch (HarvlinkException failure)
                {
                    bool isLost = failure.Code == ErrorCode.ResponseTimeout || failure.Code == ErrorCode.FileBlockMissing
                        || failure.Code == ErrorCode.AnswerTooShort;
                    if (!isLost || repeats == MostRepeats)
                    {
                        throw;
                    }
                }
            }
        }
    }
}
